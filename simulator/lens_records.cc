#include "simulator/lens_records.h"

#include <span>

#include "simulator/lens_offset.h"

namespace zel::simulator {
namespace {

// | 0  | s32 x 3 | lens 0: p0, p1, p2                |
// | 12 | s32 x 3 | lens 1: p0, p1, p2                |
// | 24 | u16 x 2 | width and height of the picture   |
Bytes originOf(std::span<const std::uint8_t> offset) {
  Bytes origin;
  origin.reserve(kOriginRecord);
  add(origin, offset.subspan(16, 12));
  add(origin, offset.subspan(48, 12));
  add(origin, offset.subspan(0, 4));
  return origin;
}

constexpr std::size_t kLensCountAt = 8;

}  // namespace

LensRecords::LensRecords()
    : factoryOffset_(lensOffsetRecord(factoryLensOffset())), factoryOrigin_(originOf(factoryOffset_)) {}

Bytes LensRecords::offset(Key key) const {
  const auto set = offsets_.find(key);
  return set != offsets_.end() ? set->second : factoryOffset_;
}

Bytes LensRecords::origin(Key key) const {
  const auto set = origins_.find(key);
  return set != origins_.end() ? set->second : factoryOrigin_;
}

bool LensRecords::setOffset(Key key, Bytes record) {
  if (record.size() != kOffsetRecord || record[kLensCountAt] > 2) return false;
  offsets_[key] = std::move(record);
  return true;
}

bool LensRecords::setOrigin(Key key, Bytes record) {
  if (record.size() != kOriginRecord) return false;
  origins_[key] = std::move(record);
  return true;
}

}  // namespace zel::simulator

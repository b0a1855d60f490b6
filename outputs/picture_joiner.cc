#include "outputs/picture_joiner.h"

#include <cstddef>
#include <utility>

namespace zel {
namespace {

constexpr std::size_t kSliceData = 4 + 1;                // start code, header
constexpr std::size_t kLargest = std::size_t{16} << 20;  // bytes of a picture
constexpr std::uint8_t kFirstMacroblock = 0x80;          // ue(v) 0 is a single 1 bit

}  // namespace

bool beginsPicture(std::span<const std::uint8_t> unit) {
  return unit.size() > kSliceData && (unit[kSliceData] & kFirstMacroblock) != 0;
}

std::optional<JoinedPicture> PictureJoiner::add(std::span<const std::uint8_t> unit, bool key, std::int64_t time) {
  if (unit.size() <= kSliceData || unit.size() > kLargest) return std::nullopt;
  if (beginsPicture(unit)) {
    return std::exchange(picture_, JoinedPicture{{unit.begin(), unit.end()}, key, time});
  }
  if (picture_ && picture_->bytes.size() + unit.size() <= kLargest) {
    picture_->bytes.insert(picture_->bytes.end(), unit.begin(), unit.end());
  }
  return std::nullopt;
}

}  // namespace zel

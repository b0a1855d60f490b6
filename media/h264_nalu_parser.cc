#include "media/h264_nalu_parser.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "media/start_code.h"

namespace orq {
namespace {

constexpr std::int32_t kStartCode = static_cast<std::int32_t>(zel::kStartCodeSize);

std::shared_ptr<MediaBuffer> piece(const std::uint8_t* data, std::int64_t begin, std::int64_t end) {
  if (end <= begin) return std::make_shared<MediaBuffer>();
  return std::make_shared<MediaBuffer>(data + begin, static_cast<int>(end - begin), 0);
}

// The unit that begins with the start code at `at`; `at` moves to the next start code, or to the end. The search and
// the copy are one pass, since a camera's chunk is mostly one large unit; the buffer grows with the unit. Deliberate: a
// start code that begins in the last four bytes is not recognised and stays part of its unit.
std::shared_ptr<MediaBuffer> takeUnit(const std::uint8_t*& at, const std::uint8_t* end) {
  constexpr std::int32_t kRoom = 120 << 10;
  const std::uint8_t* const first = std::exchange(at, end);
  const auto whole = static_cast<std::int32_t>(end - first);
  std::int32_t room = std::min(whole, kRoom), size = kStartCode;
  zel::HeapBytes unit;
  if (!unit.resize(room)) return std::make_shared<MediaBuffer>();
  std::memcpy(unit.data(), first, kStartCode);
  while (true) {
    const std::uint8_t* const stop = first + std::max(std::min(room, whole - kStartCode), size);
    const std::uint8_t* const found = zel::copyToStartCode(first + size, stop, unit.data() + size);
    size = static_cast<std::int32_t>(found - first);
    if (found < stop) break;
    if (room == whole) {
      std::memcpy(unit.data() + size, found, static_cast<std::size_t>(whole - size));
      return std::make_shared<MediaBuffer>(std::move(unit));
    }
    room = room > whole / 2 ? whole : 2 * room;
    if (!unit.resize(room)) return std::make_shared<MediaBuffer>();
  }
  at = first + size;
  unit.resize(size);
  return std::make_shared<MediaBuffer>(std::move(unit));
}

// Cuts bytes that begin with a start code; the last unit is returned separately.
std::shared_ptr<MediaBuffer> cutAll(const std::uint8_t* at, const std::uint8_t* end, H264NaluParser::Units& units) {
  while (true) {
    auto unit = takeUnit(at, end);
    if (at == end) return unit;
    units.push_back(std::move(unit));
  }
}

}  // namespace

H264NaluParser::Units H264NaluParser::AppendData(const void* data, int size) {
  if (data == nullptr || size < 1) return {};
  const auto* const bytes = static_cast<const std::uint8_t*>(data);
  return size >= kStartCode && zel::isStartCode(bytes) ? cutChunk(bytes, size) : continuePending(bytes, size);
}

// The very first chunk therefore gives an empty unit first, which consumers skip by its size.
H264NaluParser::Units H264NaluParser::cutChunk(const std::uint8_t* data, std::int32_t size) {
  Units units{std::move(pending_)};
  pending_ = cutAll(data, data + size, units);
  return units;
}

H264NaluParser::Units H264NaluParser::continuePending(const std::uint8_t* data, std::int32_t size) {
  if (pending_->size() > kLargestPending - std::min(size, kLargestPending)) pending_ = std::make_shared<MediaBuffer>();
  const std::int32_t held = pending_->size();
  // A start code may span both: its first three bytes may be held already.
  const std::int32_t lookBack = std::min(held, kStartCode - 1) + size;
  if (held == 0 || pending_->data()[held - 1] != 0) return cutBehindSeam(data, size, lookBack);
  pending_->AppendData(data, size);
  return ProcessBuffer(lookBack);
}

// The same result as ProcessBuffer() when no start code spans the held bytes and the chunk, without a copy of the
// cut-off units.
H264NaluParser::Units H264NaluParser::cutBehindSeam(const std::uint8_t* data, std::int32_t size,
                                                    std::int32_t lookBack) {
  const std::int32_t held = pending_->size();
  const std::int32_t from = std::max(kStartCode - held, 0);
  const std::uint8_t* const end = data + std::max(size - kStartCode, 0);
  const std::uint8_t* const found = from < size ? zel::findStartCode(data + from, end) : end;
  if (found >= end) {
    pending_->AppendData(data, size);
    return {};
  }
  // Deliberate, as in ProcessBuffer(): the first piece begins at offset lookBack of the held bytes and the chunk.
  auto first = piece(pending_->data(), lookBack, held);
  const std::int32_t skipped = std::max(lookBack - held, 0);
  first->AppendData(data + skipped, static_cast<int>(found - data) - skipped);
  Units units{std::move(first)};
  pending_ = cutAll(found, data + size, units);
  return units;
}

H264NaluParser::Units H264NaluParser::ProcessBuffer(int lookBack) {
  const std::int64_t size = pending_->size();
  const std::int64_t start = std::max<std::int64_t>(size - lookBack, kStartCode);
  if (start >= size - kStartCode) return {};
  const std::uint8_t* const data = pending_->data();
  const std::uint8_t* const end = data + size - kStartCode;
  const std::uint8_t* const found = zel::findStartCode(data + start, end);
  if (found == end) return {};
  // Deliberate: the first piece begins at offset lookBack, not at 0.
  Units units{piece(data, lookBack, found - data)};
  pending_ = cutAll(found, data + size, units);
  return units;
}

}  // namespace orq

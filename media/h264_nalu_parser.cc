#include "media/h264_nalu_parser.h"

#include <algorithm>
#include <utility>

#include "media/start_code.h"

namespace orq {
namespace {

constexpr std::int32_t kStartCode = static_cast<std::int32_t>(zel::kStartCodeSize);

std::shared_ptr<MediaBuffer> piece(const std::uint8_t* data, std::int64_t begin, std::int64_t end) {
  if (end <= begin) return std::make_shared<MediaBuffer>();
  return std::make_shared<MediaBuffer>(data + begin, static_cast<int>(end - begin), 0);
}

// Cuts at every start code from `from` on, the first piece beginning at `last`; gives where the last cut was.
// Deliberate: a start code that begins in the last four bytes is not seen. It stays within its unit.
std::int64_t cut(const std::uint8_t* data, std::int64_t size, std::int64_t from, std::int64_t last,
                 H264NaluParser::Units& units) {
  const std::uint8_t* const end = data + size - kStartCode;
  for (const auto* at = zel::findStartCode(data + from, end); at < end; at = zel::findStartCode(at + 1, end)) {
    units.push_back(piece(data, last, at - data));
    last = at - data;
  }
  return last;
}

}  // namespace

H264NaluParser::Units H264NaluParser::AppendData(const void* data, int size) {
  if (data == nullptr || size < 1) return {};
  const auto* const bytes = static_cast<const std::uint8_t*>(data);
  return size >= kStartCode && zel::isStartCode(bytes) ? cutChunk(bytes, size) : continuePending(bytes, size);
}

// The very first chunk thus gives an empty unit first, which consumers skip by its size.
H264NaluParser::Units H264NaluParser::cutChunk(const std::uint8_t* data, std::int32_t size) {
  Units units{std::move(pending_)};
  pending_ = piece(data, size > 2 * kStartCode ? cut(data, size, kStartCode, 0, units) : 0, size);
  return units;
}

H264NaluParser::Units H264NaluParser::continuePending(const std::uint8_t* data, std::int32_t size) {
  if (pending_->size() > kLargestPending - std::min(size, kLargestPending)) pending_ = std::make_shared<MediaBuffer>();
  // A start code may straddle the seam: its first three bytes may be held already.
  const std::int32_t lookBack = std::min(pending_->size(), kStartCode - 1) + size;
  pending_->AppendData(data, size);
  return ProcessBuffer(lookBack);
}

H264NaluParser::Units H264NaluParser::ProcessBuffer(int lookBack) {
  const std::int64_t size = pending_->size();
  const std::int64_t start = std::max<std::int64_t>(size - lookBack, kStartCode);
  if (start >= size - kStartCode) return {};
  Units units;
  // Deliberate: the first piece begins at the look-back count, as an offset, and not at 0.
  const std::int64_t last = cut(pending_->data(), size, start, lookBack, units);
  if (!units.empty()) pending_ = piece(pending_->data(), last, size);
  return units;
}

}  // namespace orq

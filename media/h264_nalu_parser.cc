#include "media/h264_nalu_parser.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "media/start_code.h"

namespace orq {
namespace {

constexpr std::int32_t kStartCode = static_cast<std::int32_t>(zel::kStartCodeSize);

// A buffer takes nothing where there is no memory; a unit without some of its bytes would be worse than none.
void append(MediaBuffer& to, const std::uint8_t* data, std::int32_t count) {
  if (count < 1) return;
  const std::int32_t before = to.size();
  to.AppendData(data, count);
  if (to.size() == before) throw std::bad_alloc();
}

std::shared_ptr<MediaBuffer> piece(const std::uint8_t* data, std::int64_t begin, std::int64_t end) {
  auto made = std::make_shared<MediaBuffer>();
  if (end > begin) append(*made, data + begin, static_cast<std::int32_t>(end - begin));
  return made;
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
  if (!unit.resize(room)) throw std::bad_alloc();
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
    if (!unit.resize(room)) throw std::bad_alloc();
  }
  at = first + size;
  unit.resize(size);
  return std::make_shared<MediaBuffer>(std::move(unit));
}

// Cuts bytes that begin with a start code; the last unit is returned separately.
std::shared_ptr<MediaBuffer> cutAll(const std::uint8_t* at, const std::uint8_t* end,
                                    const H264NaluParser::TakeUnit& take) {
  while (true) {
    auto unit = takeUnit(at, end);
    if (at == end) return unit;
    take(std::move(unit));
  }
}

// Keeps the units in a list.
template <class Cut>
H264NaluParser::Units listOf(Cut cut) {
  H264NaluParser::Units units;
  cut([&units](H264NaluParser::Unit unit) { units.push_back(std::move(unit)); });
  return units;
}

}  // namespace

H264NaluParser::Units H264NaluParser::AppendData(const void* data, int size) {
  return listOf([&](const TakeUnit& take) { AppendData(data, size, take); });
}

void H264NaluParser::AppendData(const void* data, int size, const TakeUnit& take) {
  if (data == nullptr || size < 1) return;
  const auto* const bytes = static_cast<const std::uint8_t*>(data);
  const bool begins = size >= kStartCode && zel::isStartCode(bytes);
  begins ? cutChunk(bytes, size, take) : continuePending(bytes, size, take);
}

// Nothing is held back until the caller has found it anew.
H264NaluParser::Unit H264NaluParser::takePending() {
  Unit taken = std::exchange(pending_, nullptr);
  return taken ? std::move(taken) : std::make_shared<MediaBuffer>();
}

void H264NaluParser::hold(const std::uint8_t* data, std::int32_t size) {
  Unit longer = takePending();
  append(*longer, data, size);
  pending_ = std::move(longer);
}

// The very first chunk therefore gives an empty unit first, which consumers skip by its size.
void H264NaluParser::cutChunk(const std::uint8_t* data, std::int32_t size, const TakeUnit& take) {
  take(takePending());
  pending_ = cutAll(data, data + size, take);
}

void H264NaluParser::continuePending(const std::uint8_t* data, std::int32_t size, const TakeUnit& take) {
  if (pendingSize() > largestPending_ - std::min(size, largestPending_)) pending_ = nullptr;
  if (!pending_) pending_ = std::make_shared<MediaBuffer>();
  const std::int32_t held = pendingSize();
  // A start code may span both: its first three bytes may be held already.
  const std::int32_t lookBack = std::min(held, kStartCode - 1) + size;
  if (held == 0 || pending_->data()[held - 1] != 0) return cutBehindSeam(data, size, lookBack, take);
  hold(data, size);
  processBuffer(lookBack, take);
}

// What processBuffer() would do, where no start code straddles the seam, without a copy of what it cuts off.
void H264NaluParser::cutBehindSeam(const std::uint8_t* data, std::int32_t size, std::int32_t lookBack,
                                   const TakeUnit& take) {
  const std::int32_t held = pendingSize();
  const std::int32_t from = std::max(kStartCode - held, 0);
  const std::uint8_t* const end = data + std::max(size - kStartCode, 0);
  const std::uint8_t* const found = from < size ? zel::findStartCode(data + from, end) : end;
  if (found >= end) return hold(data, size);
  // Deliberate, as in ProcessBuffer(): the first piece begins at offset lookBack of the held bytes and the chunk.
  auto first = piece(takePending()->data(), lookBack, held);
  const std::int32_t skipped = std::max(lookBack - held, 0);
  append(*first, data + skipped, static_cast<std::int32_t>(found - data) - skipped);
  take(std::move(first));
  pending_ = cutAll(found, data + size, take);
}

H264NaluParser::Units H264NaluParser::ProcessBuffer(int lookBack) {
  return listOf([&](const TakeUnit& take) { processBuffer(lookBack, take); });
}

void H264NaluParser::processBuffer(int lookBack, const TakeUnit& take) {
  const std::int64_t size = pendingSize();
  const std::int64_t start = std::max<std::int64_t>(size - lookBack, kStartCode);
  if (start >= size - kStartCode) return;
  const std::uint8_t* const data = pending_->data();
  const std::uint8_t* const end = data + size - kStartCode;
  const std::uint8_t* const found = zel::findStartCode(data + start, end);
  if (found == end) return;
  const Unit whole = takePending();
  // Deliberate: the first piece begins at offset lookBack, not at 0.
  take(piece(data, lookBack, found - data));
  pending_ = cutAll(found, data + size, take);
}

}  // namespace orq

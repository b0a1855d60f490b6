#include "link/frame_cutter.h"

#include <algorithm>
#include <string_view>

#include "base/has_memory_for.h"
#include "base/text.h"

namespace zel {
namespace {

constexpr std::size_t kShortRead = 4096;
constexpr std::size_t kMarker = dataSynchronismValue.size();

}  // namespace

std::optional<std::size_t> findMarker(ByteView bytes) {
  const std::size_t at = asText(bytes).find(asText(dataSynchronismValue));
  if (at == std::string_view::npos) return std::nullopt;
  return at;
}

// Bytes that do not fit into memory leave a gap, behind which no frame can be found but by the marker.
inline bool FrameCutter::hold(ByteView bytes) {
  if (!buffer_.hasRoomFor(bytes.size())) return hasMemoryFor([&] { buffer_.append(bytes); }) || losePosition();
  buffer_.append(bytes);
  return true;
}

void FrameCutter::append(ByteView bytes) {
  forgetClearedBytes();
  statistics_.bytesReceived.add(bytes.size());
  hold(bytes);
}

void FrameCutter::setLongestFrame(std::uint32_t bytes) {
  longestFrame_.store(std::min(bytes, kMaxFrameLength), std::memory_order_relaxed);
}

void FrameCutter::forgetClearedBytes() {
  if (!wasCleared()) return;
  clearsSeen_ = clears_.load();
  buffer_.clear();
}

void FrameCutter::cut() {
  forgetClearedBytes();
  cutAppended();
}

void FrameCutter::cutAppended() {
  if (needsMarker()) {
    searchMarker();
  } else {
    cutHeld();
  }
}

void FrameCutter::cut(ByteView lastRead) {
  forgetClearedBytes();
  statistics_.bytesReceived.add(lastRead.size());
  if (lastRead.size() >= kShortRead && !needsMarker()) return cutInPlace(lastRead);
  // A short read is cheaper to copy than to take apart.
  if (hold(lastRead)) cutAppended();
}

// Apart from short reads, whose view then never has to be in memory.
void FrameCutter::cutInPlace(ByteView lastRead) {
  if (!cutHeld() || !completeHeld(lastRead) || lastRead.empty()) return;
  if (const auto awaited = walk(lastRead); awaited && hold(lastRead)) buffer_.consume(0, *awaited);
}

bool FrameCutter::cutHeld() {
  if (awaitsMore()) return true;
  ByteView rest = buffer_.view();
  const auto awaited = walk(rest);
  if (awaited) buffer_.consume(buffer_.size() - rest.size(), *awaited);
  return awaited.has_value();
}

// Moves no more bytes behind the held beginning of a frame than that frame lacks, so that all others are handed on from
// where they were read.
bool FrameCutter::completeHeld(ByteView& lastRead) {
  while (buffer_.size() != 0 && !lastRead.empty()) {
    const std::size_t wanted = std::max(buffer_.awaited(), kFrameHeader);
    const std::size_t taken = std::min(wanted - buffer_.size(), lastRead.size());
    if (!hold(lastRead.first(taken))) return false;
    lastRead = lastRead.subspan(taken);
    if (!cutHeld()) return false;
  }
  return true;
}

std::optional<std::size_t> FrameCutter::walk(ByteView& bytes) {
  while (bytes.size() >= kFrameHeader) {
    const auto length = loadLittleEndian<std::uint32_t>(bytes.data());
    const auto type = loadLittleEndian<std::uint16_t>(bytes.data() + 4);
    if (!isPossible(length, type)) {
      losePosition();
      return std::nullopt;
    }
    if (bytes.size() < length) return length;  // not an error: the rest comes with a later read
    statistics_.addFrame(type, length);
    sink_.takeFrame(type, bytes.subspan(kFrameHeader, length - kFrameHeader));
    if (wasCleared()) return std::nullopt;  // a consumer, or another thread, closed or reopened the session
    bytes = bytes.subspan(length);
  }
  return 0;
}

bool FrameCutter::isPossible(std::uint32_t length, std::uint16_t type) {
  if (length < kFrameHeader || length > kMaxFrameLength) return false;
  if (length <= longestFrame_.load(std::memory_order_relaxed)) return true;
  return FrameType{type} == FrameType::photo && sink_.awaitsPhoto();
}

bool FrameCutter::losePosition() {
  statistics_.positionsLost.add(1);
  buffer_.clear();
  setNeedsMarker(true);  // nothing more is taken for a frame, even where the session cannot be reopened
  sink_.positionLost();
  return false;
}

void FrameCutter::searchMarker() {
  const ByteView bytes = buffer_.view();
  if (bytes.size() < kMarker) return;
  // A marker at the very end is left for a later call: it counts only once a byte follows it.
  if (const auto at = findMarker(bytes.first(bytes.size() - 1))) return startAfterMarker(*at + kMarker);
  const std::size_t garbage =
      bytes.size() - kMarker;  // the rest may be the beginning of a marker that a read has split
  statistics_.bytesDiscarded.add(garbage);
  buffer_.consume(garbage, 0);
}

void FrameCutter::startAfterMarker(std::size_t markerEnd) {
  statistics_.bytesDiscarded.add(markerEnd - kMarker);
  statistics_.markersFound.add(1);
  buffer_.consume(markerEnd, 0);
  setNeedsMarker(false);
  sink_.streamBegins();
}

}  // namespace zel

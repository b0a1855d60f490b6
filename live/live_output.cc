#include "live/live_output.h"

#include <algorithm>
#include <array>

#include "base/has_memory_for.h"

namespace zel {
namespace {

constexpr std::array<std::uint8_t, 4> kStartCode = {0, 0, 0, 1};

// Times are the camera's: a difference beyond 64 bits wraps.
std::int64_t difference(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}

}  // namespace

void LiveOutput::restart() {
  firstTimestamp_.set(0);
  hasVideo_.set(false);
  hasAudio_.set(false);
}

std::optional<std::int64_t> LiveOutput::takePicture(std::int64_t timestamp, bool cancelled) {
  pictures_.add(1);
  const std::int64_t first = firstTimestamp_.get();
  if (cancelled || first < 1 || timestamp < first) {
    notWanted_.add(1);
    return std::nullopt;
  }
  bufferTimestamp_.set(timestamp);
  return difference(timestamp, first);
}

void LiveOutput::onAACHeader(Bytes header) {
  if (hasAudio_.get()) return;
  if (const auto receiver = delegate()) receiver->sourceOnAACHeader(header);
  hasAudio_.set(true);
}

void LiveOutput::onAACAdts(Bytes data, std::int64_t timestamp) {
  if (firstTimestamp_.get() == 0) firstTimestamp_.set(timestamp);
  addAACData(data, difference(timestamp, firstTimestamp_.get()));
}

// False where the delegate found no memory for it.
template <class Call>
bool LiveOutput::deliver(Call call) const {
  const auto receiver = delegate();
  return !receiver || hasMemoryFor([&] { call(*receiver); });
}

void LiveOutput::addAACData(Bytes data, std::int64_t timestamp) {
  const bool delivered = hasAudio_.get() && !waitsForVideo() && deliver([&](ZELLiveDataSourceProtocol& receiver) {
                           receiver.sourceOnAACData(data, timestamp);
                         });
  (delivered ? audioFrames_ : droppedAudio_).add(1);
}

bool LiveOutput::waitsForVideo() const {
  return !hasVideo_.get() && settings_.isStitch.get() && settings_.isEncode.get();
}

void LiveOutput::addVideoStream(Bytes sps, Bytes pps) {
  if (hasVideo_.get()) return;
  if (const auto receiver = delegate()) receiver->sourceOnH264Header(sps, pps);
  hasVideo_.set(true);
}

void LiveOutput::addH264Nalu(std::span<std::uint8_t> unit, bool keyframe, std::int64_t timestamp) {
  const bool isWanted = unit.size() > kStartCode.size() && letsThrough(timestamp);
  if (unit.size() >= kStartCode.size()) std::ranges::copy(kStartCode, unit.begin());
  const bool delivered = isWanted && deliver([&](ZELLiveDataSourceProtocol& receiver) {
                           receiver.sourceOnH264Nalu(unit, keyframe, timestamp);
                         });
  (delivered ? units_ : droppedUnits_).add(1);
}

// Deliberate: compares the newest picture's camera time with the unit's time from the origin.
bool LiveOutput::letsThrough(std::int64_t unitsTimestamp) const {
  return bufferTimestamp_.get() >= unitsTimestamp && hasAudio_.get() && hasVideo_.get();
}

void LiveOutput::copyStatistics(LiveStatistics& into) const {
  into.pictures = pictures_.get();
  into.notWanted = notWanted_.get();
  into.units = units_.get();
  into.droppedUnits = droppedUnits_.get();
  into.audioFrames = audioFrames_.get();
  into.droppedAudio = droppedAudio_.get();
}

}  // namespace zel

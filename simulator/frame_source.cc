#include "simulator/frame_source.h"

namespace zel::simulator {
namespace {

constexpr int kRates[] = {15, 20, 25, 30};
constexpr std::size_t kLargestPicture[] = {30'000, 40'000, 50'000, 60'000};  // bytes, by size code

Bytes timestamp(std::uint8_t stream, std::int64_t cameraTime) {
  Bytes payload{stream};
  put(payload, static_cast<std::uint64_t>(cameraTime));
  return frame(kTimestamp, payload);
}

}  // namespace

double FrameSource::secondsPerPicture() const { return 1.0 / kRates[code_ % 4]; }

Bytes FrameSource::nextPicture(std::int64_t cameraTime, bool withTimestamps) {
  const std::size_t most = kLargestPicture[code_ / 4];
  Bytes frames;
  if (withTimestamps) add(frames, timestamp(0, cameraTime));
  add(frames, frame(kVideo, noise(20'000, most)));
  if (withTimestamps) add(frames, timestamp(1, cameraTime));
  add(frames, frame(kAudio, noise(300, 400)));
  return frames;
}

Bytes FrameSource::heartbeat(std::int64_t cameraTime) const { return timestamp(0, cameraTime); }

Bytes FrameSource::unknownFrame() {
  constexpr std::uint16_t kUnknown[] = {0, 5, 6, 10, 99, 0xFFFF};
  return frame(kUnknown[random_() % 6], noise(0, 100));
}

Bytes FrameSource::noise(std::size_t least, std::size_t most) {
  Bytes bytes(least + random_() % (most - least + 1));
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random_());
  return bytes;
}

}  // namespace zel::simulator

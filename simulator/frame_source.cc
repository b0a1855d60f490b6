#include "simulator/frame_source.h"

namespace zel::simulator {

Bytes FrameSource::tornFrame() { return noise(10'000, 30'000); }

Bytes FrameSource::heartbeat(std::int64_t cameraTime) const {
  Bytes payload{0};  // the video's
  put(payload, static_cast<std::uint64_t>(cameraTime));
  return frame(kTimestamp, payload);
}

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

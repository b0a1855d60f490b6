#pragma once

#include <cstdint>
#include <random>

#include "simulator/wire.h"

namespace zel::simulator {

// The frames of a connection besides media and replies.
class FrameSource {
 public:
  explicit FrameSource(std::uint64_t seed) : random_(seed) {}

  // The rest of a picture frame without its beginning.
  Bytes tornFrame() { return noise(10'000, 30'000); }

  // The timestamp frame that is sent while there are no pictures. cameraTime in milliseconds.
  Bytes heartbeat(std::int64_t cameraTime) const {
    constexpr std::uint8_t kOfVideo = 0;
    return frame(kTimestamp, packed(kOfVideo, static_cast<std::uint64_t>(cameraTime)));
  }

  // A frame of an unknown data type.
  Bytes unknownFrame() {
    constexpr std::uint16_t kUnknown[] = {0, 5, 6, 10, 99, 0xFFFF};
    return frame(kUnknown[random_() % 6], noise(0, 100));
  }

 private:
  Bytes noise(std::size_t least, std::size_t most) {
    Bytes bytes(least + random_() % (most - least + 1));
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random_());
    return bytes;
  }

  std::mt19937_64 random_;
};

}  // namespace zel::simulator

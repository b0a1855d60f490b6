#pragma once

#include <cstdint>
#include <random>

#include "simulator/wire.h"

namespace zel::simulator {

// What a connection sends beside its media and the camera's answers.
class FrameSource {
 public:
  explicit FrameSource(std::uint64_t seed) : random_(seed) {}

  // The rest of a picture whose beginning nobody heard.
  Bytes tornFrame();

  // What shows that the camera is there while it sends no pictures. cameraTime in milliseconds.
  Bytes heartbeat(std::int64_t cameraTime) const;

  // A frame whose data type nobody knows.
  Bytes unknownFrame();

 private:
  Bytes noise(std::size_t least, std::size_t most);

  std::mt19937_64 random_;
};

}  // namespace zel::simulator

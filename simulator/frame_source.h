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
  Bytes tornFrame();

  // The timestamp frame that is sent while there are no pictures. cameraTime in milliseconds.
  Bytes heartbeat(std::int64_t cameraTime) const;

  // A frame of an unknown data type.
  Bytes unknownFrame();

 private:
  Bytes noise(std::size_t least, std::size_t most);

  std::mt19937_64 random_;
};

}  // namespace zel::simulator

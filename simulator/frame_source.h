#pragma once

#include <cstdint>
#include <random>

#include "simulator/wire.h"

namespace zel::simulator {

// The preview of one connection: what the camera sends for each picture.
class FrameSource {
 public:
  // code: preview resolution code, 0 to 15; code % 4 sets the rate, code / 4 the size.
  FrameSource(int code, std::uint64_t seed) : code_(code), random_(seed) {}

  double secondsPerPicture() const;

  void setCode(int code) { code_ = code; }

  // Frames of the next picture: a time stamp and video, then a time stamp and audio. The bytes are noise of the size
  // that real ones have. cameraTime in milliseconds.
  Bytes nextPicture(std::int64_t cameraTime, bool withTimestamps);

  // What shows that the camera is there while it sends no pictures.
  Bytes heartbeat(std::int64_t cameraTime) const;

  // A frame whose data type nobody knows.
  Bytes unknownFrame();

 private:
  Bytes noise(std::size_t least, std::size_t most);

  int code_;
  std::mt19937_64 random_;
};

}  // namespace zel::simulator

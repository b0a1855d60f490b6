#pragma once

#include <span>
#include <vector>

#include "simulator/wire.h"

namespace zel::simulator {

// Audio in frames of 1024 samples, each with its own header.
struct AudioTrack {
  int sampleRate = 48000;
  std::vector<Bytes> frames;

  double secondsPerFrame() const { return 1024.0 / sampleRate; }
};

// Cuts a file of ADTS frames. An incomplete last frame is left out.
// Errors: no frames for bytes that do not begin with a whole frame; reading ends at other bytes after a frame.
AudioTrack framesIn(std::span<const std::uint8_t> file);

// The header of 7 bytes before a frame of AAC-LC with `size` bytes, at 48 kHz in stereo.
Bytes adtsHeader(std::size_t size);

}  // namespace zel::simulator

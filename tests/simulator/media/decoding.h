#pragma once

#include <span>
#include <vector>

#include "platform/ffmpeg/libav.h"
#include "simulator/media/annex_b.h"
#include "simulator/wire.h"

namespace zel::simulator {

// Luma of a decoded picture without gaps.
struct DecodedLuma {
  int width = 0, height = 0;
  bool fullRange = false;
  Bytes luma;

  int at(int x, int y) const { return luma[static_cast<std::size_t>(y * width + x)]; }
};

// What FFmpeg makes of the pictures, and of ADTS frames (the left channel).
std::vector<DecodedLuma> decodePictures(std::span<const VideoPicture> pictures);
std::vector<float> decodeSound(std::span<const Bytes> frames);

}  // namespace zel::simulator

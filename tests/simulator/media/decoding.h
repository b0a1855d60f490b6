#pragma once

#include <span>
#include <vector>

#include "platform/ffmpeg/libav.h"
#include "simulator/media/annex_b.h"
#include "simulator/wire.h"

namespace zel::simulator {

// Luma of a decoded picture without gaps, and what the stream tells of its colours.
struct DecodedLuma {
  int width = 0, height = 0;
  bool fullRange = false;
  int primaries = 0, transfer = 0, matrix = 0;  // numbers of ITU-T H.273
  Bytes luma;
  Bytes cb, cr;  // a sample for four pixels

  int at(int x, int y) const { return luma[static_cast<std::size_t>(y * width + x)]; }
};

// What FFmpeg makes of the pictures, and of ADTS frames (the left channel).
std::vector<DecodedLuma> decodePictures(std::span<const VideoPicture> pictures);
std::vector<float> decodeSound(std::span<const Bytes> frames);

}  // namespace zel::simulator

#pragma once

#include "platform/ffmpeg/libav.h"
#include "simulator/picture.h"

namespace zel::simulator {

// Converts the picture, of even size, to a planar frame: full range, the matrix of ITU-R BT.601, rounded to nearest.
// Chroma is computed from the mean of four pixels.
void convert(const Picture& picture, AVFrame& frame);

}  // namespace zel::simulator

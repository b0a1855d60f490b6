#pragma once

#include "platform/ffmpeg/libav.h"
#include "simulator/picture.h"

namespace zel::simulator {

// Fills a frame of planes, of the picture's even size, with its luma and chroma: full range, the matrix of ITU-R
// BT.601. Each sample is the nearest one; chroma is that of the mean of four pixels.
void convert(const Picture& picture, AVFrame& frame);

}  // namespace zel::simulator

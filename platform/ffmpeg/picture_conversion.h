#pragma once

#include <cstdint>

#include <ZELTarkaSDK/platform/pixel_buffer.h>
#include "platform/ffmpeg/libav.h"

namespace zel::platform {

// A sample of 8-bit limited range stretched to full range, rounded to the nearest, halves away from the middle; what
// lies outside the range takes its end. In whole numbers, so that it vectorises, and equal to the exact formula for all
// inputs.
constexpr std::uint8_t stretched(int limited, int black, int scale, int zero) {
  const int value = (((limited - black) * scale + (1 << 15)) >> 16) + zero;
  return static_cast<std::uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}
constexpr std::uint8_t fullRangeLuma(std::uint8_t limited) { return stretched(limited, 16, 76309, 0); }  // 255 / 219
constexpr std::uint8_t fullRangeChroma(std::uint8_t limited) {
  return stretched(limited, 128, 74606, 128);
}  // 255 / 224

// The decoded picture in full range, with interleaved chroma and its colours as the stream tells them. A stream that
// does not tell its range is of limited range, as H.264 has it. Luma of full range is used where the decoder has put
// it.
//
// Owner:  keeps the memory of a frame of full range as long as the picture lives.
//
// Errors: null for every format but 8-bit 4:2:0.
PixelBufferRef pixelsOf(FramePtr frame);

}  // namespace zel::platform

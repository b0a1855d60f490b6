#pragma once

#include <cstdint>

#include <ZELTarkaSDK/platform/pixel_buffer.h>

#include "platform/ffmpeg/libav.h"

namespace zel::platform {

// A sample of 8-bit limited range converted to full range, rounded to nearest, halves away from the middle, clamped. In
// integers, so that it vectorises, and equal to the exact formula for all inputs.
constexpr std::uint8_t stretched(int limited, int black, int scale, int zero) {
  const int value = (((limited - black) * scale + (1 << 15)) >> 16) + zero;
  return static_cast<std::uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}
constexpr std::uint8_t fullRangeLuma(std::uint8_t limited) { return stretched(limited, 16, 76309, 0); }  // 255 / 219
constexpr std::uint8_t fullRangeChroma(std::uint8_t limited) {
  return stretched(limited, 128, 74606, 128);
}  // 255 / 224

// The decoded picture in full range, with interleaved chroma and the stream's colour description. An undeclared range
// is limited, as in H.264. Full-range luma is not copied.
//
// Owner:  a full-range picture keeps the decoder's frame alive.
//
// Errors: null for every format but 8-bit 4:2:0.
PixelBufferRef pixelsOf(FramePtr frame);

}  // namespace zel::platform

#pragma once

#include <cstddef>
#include <cstdint>

namespace zel::render {

// A source plane: luma with one byte a pixel, or chroma with Cb and Cr, two bytes a pixel.
// Units:  width and height in pixels of the plane, at least 2; stride in bytes, at least a row's.
struct SourcePlane {
  const std::uint8_t* data = nullptr;
  std::int32_t stride = 0;
  std::int32_t width = 0, height = 0;
};

// The gain of a lens, in 1/32768; 1 to 65535. For chroma it scales the distance from grey.
inline constexpr std::uint16_t kUnityGain = 32768;
struct LensGains {
  std::uint16_t lens[2] = {kUnityGain, kUnityGain};
};

// The shape of a run: `pixels` of the output; each segment but the last covers segmentPixels of them.
struct RunShape {
  std::size_t segmentPixels = 16;
  std::size_t pixels = 0;
};

}  // namespace zel::render

#pragma once

#include <cstddef>
#include <cstdint>

namespace zel::render {

// A plane to read from: of luma with a byte a pixel, or of chroma with Cb and Cr, two bytes a pixel.
// Units:  width and height in pixels of the plane, at least 2; stride in bytes, at least a row's.
struct SourcePlane {
  const std::uint8_t* data = nullptr;
  std::int32_t stride = 0;
  std::int32_t width = 0, height = 0;
};

// What each lens's picture is multiplied by, in 1/32768; 1 to 65535. Chroma: its distance from grey.
inline constexpr std::uint16_t kUnityGain = 32768;
struct LensGains {
  std::uint16_t lens[2] = {kUnityGain, kUnityGain};
};

// How the kernels read a run: `pixels` are the output's; each segment but the last stands for segmentPixels of them.
struct RunShape {
  std::size_t segmentPixels = 16;
  std::size_t pixels = 0;
};

}  // namespace zel::render

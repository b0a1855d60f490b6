#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/render/plane_map.h"

namespace zel::render {

// A plane to read from: of luma with a byte a pixel, or of chroma with Cb and Cr, two bytes a pixel.
// Units: width and height in pixels of the plane, at least 2; stride in bytes, at least a row's.
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

// Bilinear, with shares of 128ths in each direction. Places outside the plane are moved to its edge, so that nothing
// outside of it is read, not even a byte behind the last row. Integers only: every processor gives the same bytes.
// Thread: any thread.
void stitchLuma(const SourcePlane& source, std::span<const Segment> segments, const RunShape& shape, std::uint16_t gain,
                std::uint8_t* out);
void stitchLumaBlend(const SourcePlane& source, std::span<const BlendSegment> segments, const RunShape& shape,
                     const LensGains& gains, std::uint8_t* out);
void stitchChroma(const SourcePlane& source, std::span<const Segment> segments, const RunShape& shape,
                  std::uint16_t gain, std::uint8_t* out);
void stitchChromaBlend(const SourcePlane& source, std::span<const BlendSegment> segments, const RunShape& shape,
                       const LensGains& gains, std::uint8_t* out);

}  // namespace zel::render

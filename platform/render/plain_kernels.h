#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "platform/render/kernel_shapes.h"
#include "platform/render/plane_map.h"

// The kernels in plain C++, a pixel at a time: for processors without vectors, and as the reference for the vector
// code.
namespace zel::render::plain {

// The four bytes of a source plane around a position, in the order top left, top right, bottom left, bottom right, and
// the 128ths to the right and down.
struct Corner {
  int right, down;
  const std::uint8_t* above;
  const std::uint8_t* below;
};

inline Corner cornerAt(const SourcePlane& source, const Segment& segment, std::size_t pixel, int pixelBytes) {
  const int j = 2 * static_cast<int>(pixel) - 15, q = (j * j - 1) / 8;
  const auto along = [&](std::int32_t start, std::uint32_t shape, std::int32_t size) {
    const int step = static_cast<std::int16_t>(shape & 0xFFFF), bend = static_cast<std::int16_t>(shape >> 16);
    return std::clamp(start + j * step + q * bend, 0, (size - 1) * (1 << kPlaceBits) - 1);
  };
  const std::int32_t x = along(segment.x, segment.shapeX, source.width);
  const std::int32_t y = along(segment.y, segment.shapeY, source.height);
  const std::uint8_t* above =
      source.data + (y >> kPlaceBits) * std::ptrdiff_t{source.stride} + (x >> kPlaceBits) * pixelBytes;
  return {x >> (kPlaceBits - 7) & 127, y >> (kPlaceBits - 7) & 127, above, above + source.stride};
}

// 128 times the value less 128.
inline int acrossAt(const std::uint8_t* row, int right, int pixelBytes) {
  return (row[0] - 128) * (128 - right) + (row[pixelBytes] - 128) * right;
}

// The product's high bits, rounded, as 16-bit vector instructions compute it.
inline int fixedProduct(int a, int b) { return (a * b + (1 << 14)) >> 15; }

inline std::uint8_t byteOf(int value) { return static_cast<std::uint8_t>(std::clamp(value, 0, 255)); }

// 128 times the luma, after the gain.
inline int lumaAt(const SourcePlane& source, const Segment& segment, std::size_t pixel, std::uint16_t gain) {
  const Corner at = cornerAt(source, segment, pixel, 1);
  const int sum = acrossAt(at.above, at.right, 1) * (128 - at.down) + acrossAt(at.below, at.right, 1) * at.down;
  const auto luma = static_cast<std::uint32_t>((sum + (1 << 21) + 32) >> 6);
  return static_cast<int>(luma * gain >> 16);
}

// 64 times the distance from grey, after the gain. colour: 0 Cb, 1 Cr.
inline int chromaAt(const SourcePlane& source, const Segment& segment, std::size_t pixel, int colour,
                    std::uint16_t gain) {
  const Corner at = cornerAt(source, segment, pixel, 2);
  const int above = acrossAt(at.above + colour, at.right, 2), below = acrossAt(at.below + colour, at.right, 2);
  return fixedProduct(above + fixedProduct(below - above, at.down << 8), gain / 2);
}

// The 16 pixels of a segment.
template <class Kernel, class AnySegment>
void writeWhole(const Kernel& kernel, const AnySegment& segment, std::uint8_t* out) {
  kernel.write(segment, out);
}

struct LumaOfOne {
  static constexpr std::size_t kPixelBytes = 1;
  const SourcePlane& source;
  const std::uint16_t gain;

  void write(const Segment& segment, std::uint8_t* out) const {
    for (std::size_t i = 0; i < kSegmentPixels; ++i) out[i] = byteOf((lumaAt(source, segment, i, gain) + 64) >> 7);
  }
};

struct LumaOfBoth {
  static constexpr std::size_t kPixelBytes = 1;
  const SourcePlane& source;
  const LensGains& gains;

  void write(const BlendSegment& segment, std::uint8_t* out) const {
    for (std::size_t i = 0; i < kSegmentPixels; ++i) {
      const int first = lumaAt(source, segment.lens[0], i, gains.lens[0]) >> 1;
      const int second = lumaAt(source, segment.lens[1], i, gains.lens[1]) >> 1;
      out[i] = byteOf((first * segment.shares[i][0] + second * segment.shares[i][1] + (1 << 12)) >> 13);
    }
  }
};

struct ChromaOfOne {
  static constexpr std::size_t kPixelBytes = 2;
  const SourcePlane& source;
  const std::uint16_t gain;

  void write(const Segment& segment, std::uint8_t* out) const {
    for (std::size_t i = 0; i < 2 * kSegmentPixels; ++i)
      out[i] = byteOf(((chromaAt(source, segment, i / 2, static_cast<int>(i % 2), gain) + 32) >> 6) + 128);
  }
};

struct ChromaOfBoth {
  static constexpr std::size_t kPixelBytes = 2;
  const SourcePlane& source;
  const LensGains& gains;

  void write(const BlendSegment& segment, std::uint8_t* out) const {
    for (std::size_t i = 0; i < 2 * kSegmentPixels; ++i) {
      const auto& shares = segment.shares[i / 2];
      const int colour = static_cast<int>(i % 2);
      const int first = chromaAt(source, segment.lens[0], i / 2, colour, gains.lens[0]);
      const int second = chromaAt(source, segment.lens[1], i / 2, colour, gains.lens[1]);
      const int sum = fixedProduct(first, shares[0] << 7) + fixedProduct(second, shares[1] << 7);
      out[i] = byteOf(((sum + 16) >> 5) + 128);
    }
  }
};

}  // namespace zel::render::plain

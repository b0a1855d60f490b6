#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

#include "platform/render/picture.h"
#include "simulator/picture.h"

// NV12 pictures for tests: made of the simulator's, compared, and handed to the stitcher.
namespace zel::render {

using PicturePtr = std::shared_ptr<platform::MemoryPixelBuffer>;

// The offset of a camera whose lenses are straight: circles of 1.5 half heights, radius share of the half height.
inline const std::string kFactoryOffset =
    "2_750.000_760.000_760.000_0.000_0.300_-0.400_750.000_2280.000_760.000_179.800_-0.200_0.500_3040_1520_7";

inline std::uint8_t byteOf(double value) { return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L)); }

// BT.601, full range; chroma is the mean of four pixels. Even sides.
inline PicturePtr nv12Of(const simulator::Picture& rgb) {
  const auto picture = platform::MemoryPixelBuffer::create(rgb.width, rgb.height);
  for (int y = 0; y < rgb.height; ++y) {
    for (int x = 0; x < rgb.width; ++x) {
      const std::uint8_t* p = rgb.rgb.data() + simulator::indexOf(rgb, x, y);
      picture->lumaRow(static_cast<std::size_t>(y))[static_cast<std::size_t>(x)] =
          byteOf(0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2]);
    }
  }
  for (int y = 0; y < rgb.height / 2; ++y) {
    for (int x = 0; x < rgb.width / 2; ++x) {
      double sum[3] = {};
      for (int i = 0; i < 12; ++i)
        sum[i % 3] +=
            rgb.rgb[simulator::indexOf(rgb, 2 * x + i / 3 % 2, 2 * y + i / 6) + static_cast<std::size_t>(i % 3)] / 4.0;
      const auto row = picture->chromaRow(static_cast<std::size_t>(y));
      row[static_cast<std::size_t>(2 * x)] = byteOf(128 - 0.168736 * sum[0] - 0.331264 * sum[1] + 0.5 * sum[2]);
      row[static_cast<std::size_t>(2 * x + 1)] = byteOf(128 + 0.5 * sum[0] - 0.418688 * sum[1] - 0.081312 * sum[2]);
    }
  }
  return picture;
}

inline int at(const platform::PixelPlane& plane, std::size_t column, std::size_t row) {
  return plane.data[row * plane.stride + column];
}

// Mean square of the differences of two planes of one size; weighted: by the area on the sphere, for equirectangular
// pictures.
inline double meanSquare(const platform::PixelPlane& a, const platform::PixelPlane& b, bool weighted = false) {
  double sum = 0, weights = 0;
  for (std::size_t row = 0; row < a.rows; ++row) {
    const double latitude = (0.5 - (static_cast<double>(row) + 0.5) / static_cast<double>(a.rows)) * 3.14159265358979;
    const double weight = weighted ? std::cos(latitude) : 1;
    for (std::size_t column = 0; column < a.rowBytes; ++column) {
      const double difference = at(a, column, row) - at(b, column, row);
      sum += weight * difference * difference;
    }
    weights += weight * static_cast<double>(a.rowBytes);
  }
  return sum / weights;
}

// In decibels.
inline double psnr(const platform::PixelPlane& a, const platform::PixelPlane& b, bool weighted = false) {
  const double square = meanSquare(a, b, weighted);
  return square > 0 ? 10 * std::log10(255.0 * 255.0 / square) : std::numeric_limits<double>::infinity();
}

}  // namespace zel::render

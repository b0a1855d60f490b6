#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulator/picture.h"

namespace zel::simulator {

using Rgb = std::vector<int>;

inline Rgb pixel(const Picture& picture, int x, int y) {
  const std::size_t at = indexOf(picture, x, y);
  return {picture.rgb[at], picture.rgb[at + 1], picture.rgb[at + 2]};
}

inline void setPixel(Picture& picture, int x, int y, std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
  const std::size_t at = indexOf(picture, x, y);
  picture.rgb[at] = red;
  picture.rgb[at + 1] = green;
  picture.rgb[at + 2] = blue;
}

inline Picture plainPicture(int width, int height, std::uint8_t value) {
  return {width, height, std::vector<std::uint8_t>(byteCount(width, height), value)};
}

}  // namespace zel::simulator

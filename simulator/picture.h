#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zel::simulator {

// 8-bit sRGB, three bytes a pixel, rows from the top without gaps.
struct Picture {
  int width = 0, height = 0;
  std::vector<std::uint8_t> rgb;

  bool operator==(const Picture&) const = default;
};

constexpr std::size_t byteCount(int width, int height) {
  return std::size_t{3} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

inline Picture blackPicture(int width, int height) {
  return {width, height, std::vector<std::uint8_t>(byteCount(width, height))};
}

// The index of a pixel's first byte.
inline std::size_t indexOf(const Picture& picture, int x, int y) {
  return byteCount(picture.width, y) + 3 * static_cast<std::size_t>(x);
}

}  // namespace zel::simulator

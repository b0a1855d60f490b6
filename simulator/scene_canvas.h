#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "simulator/picture.h"

namespace zel::simulator {

struct Colour {
  std::uint8_t red = 0, green = 0, blue = 0;

  bool operator==(const Colour&) const = default;
};

// A piece of the sphere, centred at a longitude and latitude; it may lie across the picture's edge.
// Units:  degrees.
struct Box {
  double longitude, latitude, halfWidth, halfHeight;
};

Colour mixed(Colour from, Colour to, double share);

// Draws on an equirectangular picture.
// Units:  degrees, as in sphere.h.
// Owner:  borrows the picture.
class SceneCanvas {
 public:
  explicit SceneCanvas(Picture& picture)
      : picture_(picture), columnsPerDegree_(picture.width / 360.0), rowsPerDegree_(picture.height / 180.0) {}

  double pixelsPerDegree() const { return rowsPerDegree_; }

  void set(int column, int row, Colour colour);

  // Blends a colour into each pixel of a box. cover(right, up), for a pixel's distance from the box's centre in
  // degrees, is the colour's share, 0 to 1.
  template <class Cover>
  void paint(const Box& box, Colour colour, Cover cover);

  void fill(const Box& box, Colour colour);

  // cell: height of a glyph's dot; a line has eight. Dots are widened so that they look square from inside the sphere.
  void text(double longitude, double latitude, double cell, std::string_view characters, Colour colour);

 private:
  void blend(int column, int row, Colour colour, double share);

  Picture& picture_;
  const double columnsPerDegree_, rowsPerDegree_;
};

template <class Cover>
void SceneCanvas::paint(const Box& box, Colour colour, Cover cover) {
  const auto pixel = [](double place) { return static_cast<int>(std::floor(place)); };
  const double middle = (box.longitude + 180) * columnsPerDegree_, level = (90 - box.latitude) * rowsPerDegree_;
  const int top = std::max(0, pixel(level - box.halfHeight * rowsPerDegree_));
  const int bottom = std::min(picture_.height - 1, pixel(level + box.halfHeight * rowsPerDegree_));
  const int left = pixel(middle - box.halfWidth * columnsPerDegree_);
  const int right = pixel(middle + box.halfWidth * columnsPerDegree_);
  for (int row = top; row <= bottom; ++row) {
    for (int column = left; column <= right; ++column)
      blend(column, row, colour,
            cover((column + 0.5 - middle) / columnsPerDegree_, (level - row - 0.5) / rowsPerDegree_));
  }
}

}  // namespace zel::simulator

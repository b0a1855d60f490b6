#include "simulator/scene_canvas.h"

#include "simulator/glyphs.h"
#include "simulator/sphere.h"

namespace zel::simulator {
namespace {

constexpr int kPitch = kGlyphWidth + 1;  // a blank column follows each glyph

std::uint8_t mixed(std::uint8_t from, std::uint8_t to, double share) {
  return static_cast<std::uint8_t>(std::lround(from + (to - from) * share));
}

// x, y: in dots from the text's top left corner.
bool dotAt(std::string_view characters, double x, double y) {
  if (x < 0 || y < 0) return false;
  const int column = static_cast<int>(x);
  const std::size_t index = static_cast<std::size_t>(column / kPitch);
  return index < characters.size() && glyphDot(characters[index], column % kPitch, static_cast<int>(y));
}

}  // namespace

Colour mixed(Colour from, Colour to, double share) {
  return {mixed(from.red, to.red, share), mixed(from.green, to.green, share), mixed(from.blue, to.blue, share)};
}

void SceneCanvas::set(int column, int row, Colour colour) {
  std::uint8_t* rgb = picture_.rgb.data() + indexOf(picture_, column, row);
  rgb[0] = colour.red;
  rgb[1] = colour.green;
  rgb[2] = colour.blue;
}

void SceneCanvas::fill(const Box& box, Colour colour) {
  paint(box, colour, [&box](double right, double up) {
    return std::abs(right) <= box.halfWidth && std::abs(up) <= box.halfHeight ? 1.0 : 0.0;
  });
}

void SceneCanvas::text(double longitude, double latitude, double cell, std::string_view characters, Colour colour) {
  const double cellWidth = cell / std::cos(latitude * kRadians);
  const double halfColumns = kPitch * static_cast<double>(characters.size()) / 2, halfRows = (kGlyphHeight + 1) / 2.0;
  const double quarterX = 0.25 / columnsPerDegree_, quarterY = 0.25 / rowsPerDegree_;
  const auto dot = [&](double right, double up) {
    return dotAt(characters, right / cellWidth + halfColumns, halfRows - up / cell) ? 0.25 : 0.0;
  };
  // Four samples a pixel, because dots are rarely a whole number of pixels.
  paint({longitude, latitude, halfColumns * cellWidth, halfRows * cell}, colour, [&](double right, double up) {
    return dot(right - quarterX, up - quarterY) + dot(right + quarterX, up - quarterY) +
           dot(right - quarterX, up + quarterY) + dot(right + quarterX, up + quarterY);
  });
}

void SceneCanvas::blend(int column, int row, Colour colour, double share) {
  if (share <= 0) return;
  const int wrapped = (column % picture_.width + picture_.width) % picture_.width;
  std::uint8_t* rgb = picture_.rgb.data() + indexOf(picture_, wrapped, row);
  rgb[0] = mixed(rgb[0], colour.red, share);
  rgb[1] = mixed(rgb[1], colour.green, share);
  rgb[2] = mixed(rgb[2], colour.blue, share);
}

}  // namespace zel::simulator

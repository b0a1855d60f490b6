#include "platform/render/plane_map.h"

#include <algorithm>
#include <cmath>

namespace zel::render {
namespace {

constexpr double kUnit = 1 << kPlaceBits;
constexpr double kHalfStep = 1.0 / 256;  // pixels; positions are truncated to 1/128
// The rim of a circle is dark and blurred, and its radius is not known exactly.
constexpr double kRimMargin = 0.5;  // degrees
constexpr double kWorstFit = 1.0 / 64;
constexpr double kLargestStep = 7.5;    // pixels between neighbours; 16 bits hold steps below 8
constexpr double kStretch = 1.8;        // tangential by radial magnification of a 200-degree lens at its rim
constexpr double kFarthest = 32768.0;   // pixels; positions farther out are not used
constexpr double kNode = 0.8660254038;  // Chebyshev's outer node, which balances the parabola's error

std::int32_t rounded(double value) { return static_cast<std::int32_t>(std::lround(value)); }

std::uint32_t half(double value) {
  const long units = std::clamp(std::lround(value * kUnit), -32768L, 32767L);
  return static_cast<std::uint16_t>(units);
}

struct Parabola {
  std::int32_t start;
  std::uint32_t shape;
};

// Through three positions, at -distance, 0 and distance from the middle of the segment's used pixels.
Parabola parabolaThrough(const std::array<double, 3>& at, double distance, std::size_t usedPixels) {
  const double slope = usedPixels < 2 ? 0 : (at[2] - at[0]) / (2 * distance);
  const double bend = usedPixels < 3 ? 0 : (at[2] + at[0] - 2 * at[1]) / (2 * distance * distance);
  // From the middle of the used pixels to the middle of all 16.
  const double aside = (kSegmentPixels - static_cast<double>(usedPixels)) / 2;
  const double middle = at[1] + slope * aside + bend * aside * aside;
  const double middleSlope = slope + 2 * bend * aside;
  const double start = std::clamp(middle + bend / 4, -kFarthest, kFarthest);
  return {rounded((start + kHalfStep) * kUnit), half(middleSlope / 2) | half(2 * bend) << 16};
}

double smooth(double t) { return t * t * (3 - 2 * t); }

}  // namespace

std::array<std::uint8_t, 2> sharesAt(double insideFirst, double insideSecond) {
  if (insideFirst <= 0 && insideSecond <= 0) return {0, 0};
  if (insideSecond <= 0) return {128, 0};
  if (insideFirst <= 0) return {0, 128};
  const double width = std::min(kFeather, (insideFirst + insideSecond) / 2);
  const double t = std::clamp(0.5 + (insideFirst - insideSecond) / (4 * width), 0.0, 1.0);
  const auto first = static_cast<std::uint8_t>(std::lround(128 * smooth(t)));
  return {first, static_cast<std::uint8_t>(128 - first)};
}

std::size_t segmentPixelsFor(std::size_t width, double pixelsPerDegree) {
  const double turn = 2 * std::numbers::pi / static_cast<double>(width);  // between neighbours
  const double radius = pixelsPerDegree / kRadians;
  if (radius * turn * kStretch > kLargestStep) return 1;
  std::size_t pixels = kSegmentPixels;
  // A circle's third derivative is its radius; the error of a parabola through three nodes is 1/192 of it by the cube.
  while (pixels > 1 && radius * std::pow(turn * static_cast<double>(pixels), 3) / 192 > kWorstFit) pixels /= 2;
  return pixels;
}

TileBuilder::TileBuilder(const std::vector<LensView>& views, double fieldOfView, const PlaneShape& shape)
    : views_(views),
      rim_(fieldOfView / 2 - kRimMargin),
      shape_(shape),
      reach_(180.0 * static_cast<double>(shape.segmentPixels) / static_cast<double>(shape.width)) {
  const std::size_t used = shape.segmentPixels;
  nodes_.resize((shape.width + used - 1) / used);
  const double distance = kNode * static_cast<double>(used) / 2;
  for (std::size_t segment = 0; segment < nodes_.size(); ++segment) {
    const double middle = static_cast<double>(segment * used) + static_cast<double>(used) / 2;
    nodes_[segment] = {longitudeOf(middle - distance), longitudeOf(middle), longitudeOf(middle + distance)};
  }
}

TileBuilder::Bearing TileBuilder::longitudeOf(double column) const {
  const double angle = (column / static_cast<double>(shape_.width) - 0.5) * 2 * std::numbers::pi;
  return {std::sin(angle), std::cos(angle)};
}

Direction TileBuilder::directionOf(const Bearing& longitude, const Bearing& latitude) const {
  return {longitude.sine * latitude.cosine, -latitude.sine, longitude.cosine * latitude.cosine};
}

TileBuilder::Margins TileBuilder::marginsAt(const Direction& direction) const {
  Margins margins{{-180, -180}};
  for (std::size_t lens = 0; lens < views_.size(); ++lens)
    margins.inside[lens] = rim_ - views_[lens].sightOf(direction).angle;
  return margins;
}

TileBuilder::Margins TileBuilder::marginsAt(double column, const Bearing& latitude) const {
  return marginsAt(directionOf(longitudeOf(column), latitude));
}

// One lens alone if both ends of the segment belong to it: in between, the shares differ from that only negligibly.
RunKind TileBuilder::kindOf(std::size_t segment, const Bearing& latitude) const {
  const auto [first, second] = marginsAt(directionOf(nodes_[segment][1], latitude)).inside;
  if (first > reach_ && (first - second) / 2 > kFeather + reach_) return RunKind::lens0;
  if (second > reach_ && (second - first) / 2 > kFeather + reach_) return RunKind::lens1;
  if (std::abs(first - second) / 2 < kFeather - reach_) return RunKind::blend;
  const double start = static_cast<double>(segment * shape_.segmentPixels) + 0.5;
  const Margins left = marginsAt(start, latitude);
  const Margins right = marginsAt(start + static_cast<double>(shape_.segmentPixels - 1), latitude);
  const auto leftShares = sharesAt(left.inside[0], left.inside[1]);
  if (leftShares != sharesAt(right.inside[0], right.inside[1])) return RunKind::blend;
  return leftShares[0] == 128 ? RunKind::lens0 : leftShares[1] == 128 ? RunKind::lens1 : RunKind::blend;
}

Segment TileBuilder::fit(std::size_t lens, std::size_t segment, const Bearing& latitude) const {
  std::array<double, kNodes> x, y;
  for (std::size_t node = 0; node < kNodes; ++node) {
    const Sight sight = views_[lens].sightOf(directionOf(nodes_[segment][node], latitude));
    x[node] = sight.x / shape_.sourceDivisor - 0.5;
    y[node] = sight.y / shape_.sourceDivisor - 0.5;
  }
  const double distance = kNode * static_cast<double>(shape_.segmentPixels) / 2;
  const Parabola across = parabolaThrough(x, distance, shape_.segmentPixels);
  const Parabola down = parabolaThrough(y, distance, shape_.segmentPixels);
  return {across.start, down.start, across.shape, down.shape};
}

BlendSegment TileBuilder::blendOf(std::size_t segment, const Bearing& latitude) const {
  BlendSegment blend;
  for (std::size_t lens = 0; lens < views_.size(); ++lens) blend.lens[lens] = fit(lens, segment, latitude);
  for (std::size_t i = 0; i < shape_.segmentPixels; ++i) {
    const double column = static_cast<double>(segment * shape_.segmentPixels + i) + 0.5;
    const auto [first, second] = marginsAt(column, latitude).inside;
    blend.shares[i] = sharesAt(first, second);
  }
  return blend;
}

void TileBuilder::addRow(Tile& tile, std::size_t row) const {
  const double angle = (0.5 - (static_cast<double>(row) + 0.5) / static_cast<double>(shape_.height)) * std::numbers::pi;
  const Bearing latitude{std::sin(angle), std::cos(angle)};
  const std::size_t rowStart = tile.runs.size();
  tile.rowRuns.push_back(static_cast<std::uint32_t>(rowStart));
  const std::size_t first = tile.place.firstColumn / shape_.segmentPixels;
  const std::size_t end = first + segmentsIn(tile.place);
  for (std::size_t segment = first; segment < end; ++segment) {
    const RunKind kind = kindOf(segment, latitude);
    const bool blends = kind == RunKind::blend;
    if (tile.runs.size() == rowStart || tile.runs.back().kind != kind) {
      const std::size_t next = blends ? tile.blends.size() : tile.segments.size();
      tile.runs.push_back({kind, static_cast<std::uint32_t>(next), 0});
    }
    ++tile.runs.back().count;
    if (blends) {
      tile.blends.push_back(blendOf(segment, latitude));
    } else {
      tile.segments.push_back(fit(kind == RunKind::lens0 ? 0 : 1, segment, latitude));
    }
  }
}

std::size_t TileBuilder::segmentsIn(const TilePlace& place) const {
  return (place.columns + shape_.segmentPixels - 1) / shape_.segmentPixels;
}

Tile TileBuilder::build(const TilePlace& place) const {
  Tile tile;
  tile.place = place;
  tile.rowRuns.reserve(place.rows + 1);
  tile.segments.reserve(place.rows * segmentsIn(place));
  for (std::size_t row = place.firstRow; row < place.firstRow + place.rows; ++row) addRow(tile, row);
  tile.rowRuns.push_back(static_cast<std::uint32_t>(tile.runs.size()));
  tile.runs.shrink_to_fit();
  tile.segments.shrink_to_fit();
  tile.blends.shrink_to_fit();
  return tile;
}

}  // namespace zel::render

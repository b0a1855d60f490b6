#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/render/lens_model.h"

namespace zel::render {

// The most pixels of one segment; a run's last segment may cover fewer.
inline constexpr std::size_t kSegmentPixels = 16;

// Positions on a source plane are in 1/8192 pixel, so that 1/128 is exact after rounding.
inline constexpr int kPlaceBits = 13;

// The source positions of 16 neighbouring output pixels, on a parabola. Pixel i is read at
//   x + j * step + q * bend     with j = 2 i - 15 (odd, -15 to 15), q = (j * j - 1) / 8 (a triangular number, 0 to 28)
// and the same in y, in 1/8192 pixel; 1/128 stands for half of the last bit kept, which rounds. In integers, so that
// every processor reads the same place, and in a sixth of the memory that a place for each pixel takes.
struct Segment {
  std::int32_t x = 0, y = 0;
  std::uint32_t shapeX = 0, shapeY = 0;  // step in the low half, bend in the high one, both signed
};
static_assert(sizeof(Segment) == 16);

// 16 pixels blended from both lenses, in 128ths. Both shares are 0 where no lens sees anything.
struct BlendSegment {
  Segment lens[2];
  std::array<std::array<std::uint8_t, 2>, kSegmentPixels> shares{};
};
static_assert(sizeof(BlendSegment) == 64);

enum class RunKind : std::uint8_t { lens0, lens1, blend };

// Neighbouring segments of one row and one kind.
struct Run {
  RunKind kind = RunKind::blend;
  std::uint32_t first = 0;  // of Tile::segments or Tile::blends
  std::uint32_t count = 0;
};

// A rectangle of a plane.
struct TilePlace {
  std::size_t firstRow = 0, rows = 0;
  std::size_t firstColumn = 0, columns = 0;  // the first is a multiple of the plane's segmentPixels
};

// The map of a rectangle; a worker's unit of work.
struct Tile {
  TilePlace place;
  std::vector<std::uint32_t> rowRuns;  // the first run of each row, and the end of the last row's runs
  std::vector<Run> runs;
  std::vector<Segment> segments;
  std::vector<BlendSegment> blends;
};

// One plane of the output. Planes with half the pixels of the picture are the chroma's.
struct PlaneShape {
  std::size_t width = 0, height = 0;
  int sourceDivisor = 1;           // 1 for luma, 2 for chroma
  std::size_t segmentPixels = 16;  // used pixels of each segment: 16, or fewer where a parabola is not accurate
};

// The width of the blend across the seam: both lenses have half where a direction is equally far inside both rims; at
// most this many degrees to either side, one lens has all.
inline constexpr double kFeather = 4;

// The shares of both lenses, in 128ths, of a direction that many degrees inside the first and the second lens's rim
// (negative: outside).
std::array<std::uint8_t, 2> sharesAt(double insideFirst, double insideSecond);

// The pixels of a segment in a row of that width, for a circle of that many pixels a degree: the largest number (16, 8,
// 4, 2, 1) for which the parabola's error is below 1/64 pixel.
std::size_t segmentPixelsFor(std::size_t width, double pixelsPerDegree);

// Builds the map of one plane, a tile at a time.
// Thread: any thread after construction, several at a time.
class TileBuilder {
 public:
  // views: of 1 or 2 lenses on the source picture, for any plane.
  TileBuilder(const std::vector<LensView>& views, double fieldOfView, const PlaneShape& shape);

  Tile build(const TilePlace& place) const;

 private:
  static constexpr std::size_t kNodes = 3;  // points of a segment through which the parabola goes
  struct Bearing {
    double sine = 0, cosine = 1;
  };
  struct Margins {
    double inside[2];  // degrees inside each lens's rim
  };

  Direction directionOf(const Bearing& longitude, const Bearing& latitude) const;
  Bearing longitudeOf(double column) const;
  Margins marginsAt(const Direction& direction) const;
  Margins marginsAt(double column, const Bearing& latitude) const;
  RunKind kindOf(std::size_t segment, const Bearing& latitude) const;
  Segment fit(std::size_t lens, std::size_t segment, const Bearing& latitude) const;
  BlendSegment blendOf(std::size_t segment, const Bearing& latitude) const;
  std::size_t segmentsIn(const TilePlace& place) const;
  void addRow(Tile& tile, std::size_t row) const;

  const std::vector<LensView>& views_;
  const double rim_;  // degrees from the axis to the used rim of a lens
  const PlaneShape shape_;
  const double reach_;                              // degrees, the largest distance from a segment's middle to its ends
  std::vector<std::array<Bearing, kNodes>> nodes_;  // of each segment of a row
};

}  // namespace zel::render

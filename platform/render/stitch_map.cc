#include "platform/render/stitch_map.h"

#include <algorithm>

namespace zel::render {
namespace {

double pixelsPerDegree(const std::vector<LensView>& views) {
  double most = 0;
  for (const LensView& view : views) most = std::max(most, view.pixelsPerDegree());
  return most;
}

PlaneShape shapeOf(const std::vector<LensView>& views, PictureSize output, int divisor) {
  PlaneShape shape;
  shape.width = static_cast<std::size_t>(output.width / divisor);
  shape.height = static_cast<std::size_t>(output.height / divisor);
  shape.sourceDivisor = divisor;
  shape.segmentPixels = segmentPixelsFor(shape.width, pixelsPerDegree(views) / divisor);
  return shape;
}

// The rectangle of a tile, counted row by row. Tiles of the chroma plane are smaller accordingly.
TilePlace placeOf(const PlaneShape& shape, std::size_t index) {
  const auto divisor = static_cast<std::size_t>(shape.sourceDivisor);
  const std::size_t rows = StitchMap::kTileRows / divisor, columns = StitchMap::kTileColumns / divisor;
  const std::size_t across = (shape.width + columns - 1) / columns;
  const std::size_t row = index / across * rows, column = index % across * columns;
  return {row, std::min(rows, shape.height - row), column, std::min(columns, shape.width - column)};
}

std::size_t tileCount(const PlaneShape& luma) {
  const std::size_t across = (luma.width + StitchMap::kTileColumns - 1) / StitchMap::kTileColumns;
  return across * ((luma.height + StitchMap::kTileRows - 1) / StitchMap::kTileRows);
}

std::size_t byteCount(const std::vector<Tile>& tiles) {
  std::size_t bytes = 0;
  for (const Tile& tile : tiles) {
    bytes += sizeof(Tile) + tile.rowRuns.capacity() * sizeof(std::uint32_t) + tile.runs.capacity() * sizeof(Run) +
             tile.segments.capacity() * sizeof(Segment) + tile.blends.capacity() * sizeof(BlendSegment);
  }
  return bytes;
}

}  // namespace

std::size_t byteCount(const StitchMap& map) { return byteCount(map.lumaTiles) + byteCount(map.chromaTiles); }

StitchMap buildStitchMap(const std::vector<LensView>& views, double fieldOfView, PictureSize output,
                         RowWorkers& workers) {
  StitchMap map;
  map.luma = shapeOf(views, output, 1);
  map.chroma = shapeOf(views, output, 2);
  const TileBuilder luma(views, fieldOfView, map.luma), chroma(views, fieldOfView, map.chroma);
  map.lumaTiles.resize(tileCount(map.luma));
  map.chromaTiles.resize(map.lumaTiles.size());
  workers.run(map.lumaTiles.size(), [&](std::size_t index, std::size_t) {
    map.lumaTiles[index] = luma.build(placeOf(map.luma, index));
    map.chromaTiles[index] = chroma.build(placeOf(map.chroma, index));
  });
  return map;
}

}  // namespace zel::render

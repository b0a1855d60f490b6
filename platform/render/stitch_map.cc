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

Band buildBand(const BandBuilder& builder, const PlaneShape& shape, std::size_t index, std::size_t rows) {
  const std::size_t first = index * rows;
  return builder.build(first, std::min(rows, shape.height - first));
}

std::size_t byteCount(const std::vector<Band>& bands) {
  std::size_t bytes = 0;
  for (const Band& band : bands) {
    bytes += sizeof(Band) + band.rowRuns.capacity() * sizeof(std::uint32_t) + band.runs.capacity() * sizeof(Run) +
             band.segments.capacity() * sizeof(Segment) + band.blends.capacity() * sizeof(BlendSegment);
  }
  return bytes;
}

}  // namespace

std::size_t byteCount(const StitchMap& map) { return byteCount(map.lumaBands) + byteCount(map.chromaBands); }

StitchMap buildStitchMap(const std::vector<LensView>& views, double fieldOfView, PictureSize output,
                         RowWorkers& workers) {
  StitchMap map;
  map.luma = shapeOf(views, output, 1);
  map.chroma = shapeOf(views, output, 2);
  const BandBuilder luma(views, fieldOfView, map.luma), chroma(views, fieldOfView, map.chroma);
  const std::size_t bands = (map.luma.height + StitchMap::kBandRows - 1) / StitchMap::kBandRows;
  map.lumaBands.resize(bands);
  map.chromaBands.resize(bands);
  workers.run(bands, [&](std::size_t index, std::size_t) {
    map.lumaBands[index] = buildBand(luma, map.luma, index, StitchMap::kBandRows);
    map.chromaBands[index] = buildBand(chroma, map.chroma, index, StitchMap::kBandRows / 2);
  });
  return map;
}

}  // namespace zel::render

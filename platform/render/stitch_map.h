#pragma once

#include <cstddef>
#include <vector>

#include "platform/render/lens_model.h"
#include "platform/render/picture.h"
#include "platform/render/plane_map.h"
#include "platform/render/row_workers.h"

namespace zel::render {

// The source position of every pixel of an equirectangular picture. The middle of the picture is forward, its left and
// right edges are backward, the top is up:
//   longitude = 360 (x / width - 1/2)        latitude = 180 (1/2 - y / height)
// A chroma sample lies in the middle of its four pixels, on the source too.
struct StitchMap {
  // For luma; half for chroma. Wide, because starting a run takes the time of about fifty pixels.
  static constexpr std::size_t kTileRows = 16, kTileColumns = 4096;

  PlaneShape luma, chroma;
  std::vector<Tile> lumaTiles, chromaTiles;  // equal numbers of both
};

// About 1.5 bytes for a pixel of the output.
std::size_t byteCount(const StitchMap& map);

// Distributed to the workers; their number does not change the map. views: each lens on the source picture.
// The output's sides are even.
StitchMap buildStitchMap(const std::vector<LensView>& views, double fieldOfView, PictureSize output,
                         RowWorkers& workers);

}  // namespace zel::render

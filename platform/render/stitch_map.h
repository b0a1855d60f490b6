#pragma once

#include <cstddef>
#include <vector>

#include "platform/render/lens_model.h"
#include "platform/render/picture.h"
#include "platform/render/plane_map.h"
#include "platform/render/row_workers.h"

namespace zel::render {

// Where every pixel of an equirectangular picture comes from. Forward is the middle of the picture, the left edge and
// the right one are backward, the top is up:
//   longitude = 360 (x / width - 1/2)        latitude = 180 (1/2 - y / height)
// A chroma sample lies in the middle of its four pixels, on the source too.
struct StitchMap {
  // Of luma; of chroma half as many. Wide, for every run costs the time of some fifty pixels to begin with.
  static constexpr std::size_t kTileRows = 16, kTileColumns = 4096;

  PlaneShape luma, chroma;
  std::vector<Tile> lumaTiles, chromaTiles;  // as many of the one as of the other
};

// About 1.5 bytes for a pixel of the output.
std::size_t byteCount(const StitchMap& map);

// Shared out among the workers; their number does not change the map. views: each lens on the source picture.
// The output's sides are even.
StitchMap buildStitchMap(const std::vector<LensView>& views, double fieldOfView, PictureSize output,
                         RowWorkers& workers);

}  // namespace zel::render

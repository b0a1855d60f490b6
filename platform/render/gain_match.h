#pragma once

#include <cstdint>
#include <vector>

#include "platform/render/lens_model.h"
#include "platform/render/stitch_kernel.h"

namespace zel::render {

// Finds how much brighter one lens's picture is than the other's from what both see, and shares the difference out, so
// that neither is changed more than the other: with the first one r times as bright, it is multiplied by 1 / sqrt(r)
// and the second one by sqrt(r).
// Thread: one at a time.
class GainMatch {
 public:
  static constexpr double kStrongest = 1.5;  // a ratio beyond it, or below its inverse, counts as it

  // views: of 1 or 2 lenses; with one there is nothing to match. width and height are the source's.
  GainMatch(const std::vector<LensView>& views, double fieldOfView, int width, int height);

  // The gains for this picture. The first picture's count at once; afterwards they go an eighth of the way towards
  // those of the new picture. A picture that is too dark or too bright to tell leaves them as they are.
  LensGains next(const SourcePlane& luma);

  // The next picture's gains count at once, as the first one's do.
  void forget() { measured_ = false; }

 private:
  struct Place {
    std::uint16_t x, y;
  };
  struct Sample {
    Place first, second;
  };

  std::vector<Sample> samples_;
  double logRatio_ = 0;
  bool measured_ = false;
};

}  // namespace zel::render

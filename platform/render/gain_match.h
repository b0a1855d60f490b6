#pragma once

#include <cstdint>
#include <vector>

#include "platform/render/lens_model.h"
#include "platform/render/stitch_kernel.h"

namespace zel::render {

// Measures the brightness ratio of both lenses in their overlap, and distributes the correction equally: if the first
// one is r times as bright, it is multiplied by 1 / sqrt(r) and the second one by sqrt(r).
// Thread: one at a time.
class GainMatch {
 public:
  static constexpr double kStrongest = 1.5;  // ratios are limited to this and its inverse

  // views: of 1 or 2 lenses; one needs no matching. width and height are the source's.
  GainMatch(const std::vector<LensView>& views, double fieldOfView, int width, int height);

  // The gains for this picture. Those of the first picture are used at once; each later one moves them by an eighth of
  // the difference. A picture that is too dark or too bright to measure does not change them.
  LensGains next(const SourcePlane& luma);

  // Uses the next picture's gains at once, as for the first one.
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

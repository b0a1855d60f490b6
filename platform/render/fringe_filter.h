#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/render/picture.h"

namespace zel::render {

// Removes purple fringes at bright edges, which occur because lenses focus violet light differently from green.
//
// A chroma sample is purple by as much as both Cb and Cr are above grey; skin, sky and grass have one of them below. If
// the brightest luma within three samples (six pixels) is 240 or more, that amount is subtracted from both, which
// leaves red, blue or grey. Below 200 nothing is subtracted, in between a part.
//   purple = max(0, min(Cb, Cr) - 128)       Cb, Cr -= purple * clamp((brightest - 200) / 40, 0, 1)
// Thread: several rows at a time, each by a different worker.
class FringeFilter {
 public:
  FringeFilter(PictureSize output, std::size_t workers);

  // Filters one row of chroma; reads the surrounding luma rows.
  void filterRow(const OutputPicture& picture, std::size_t row, std::size_t worker);

 private:
  struct Scratch {
    std::vector<std::uint8_t> luma;       // the brightest luma of each column
    std::vector<std::uint8_t> brightest;  // around each sample
  };

  const std::size_t width_, height_;
  std::vector<Scratch> scratch_;  // one for each worker
};

}  // namespace zel::render

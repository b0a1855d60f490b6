#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/render/picture.h"

namespace zel::render {

// Takes the purple rim off bright edges, which lenses draw because they focus violet light elsewhere than green.
//
// A chroma sample is purple by as much as both its Cb and its Cr lie above grey; skin, sky and grass have one of them
// below. Where the brightest luma within three samples (six pixels) is 240 or more, all of that is taken off both Cb
// and Cr, which leaves what the colour is besides: red, blue, or grey. Below 200 nothing is; in between a part.
//   purple = max(0, min(Cb, Cr) - 128)       Cb, Cr -= purple * clamp((brightest - 200) / 40, 0, 1)
// Thread: several rows at a time, each by another worker.
class FringeFilter {
 public:
  FringeFilter(PictureSize output, std::size_t workers);

  // Filters one row of chroma; reads luma rows around it.
  void filterRow(const OutputPicture& picture, std::size_t row, std::size_t worker);

 private:
  struct Scratch {
    std::vector<std::uint8_t> luma;       // the brightest of each column
    std::vector<std::uint8_t> brightest;  // around each sample
  };

  const std::size_t width_, height_;
  std::vector<Scratch> scratch_;  // one a worker
};

}  // namespace zel::render

#pragma once

#include <chrono>

#include "bench/film.h"

namespace zel::bench {

// Milliseconds a picture, best of three turns: each stage alone, with nothing around it. The decoder and the encoder
// have one thread, the stitcher all.
struct StageCosts {
  double decode = 0, stitch = 0, encode = 0;
};
StageCosts measureStages(const Film& film, int width, int bitrate);

// Milliseconds that a picture takes through all stages, called one after the other on one thread, a picture each
// interval as a camera sends them; the median.
double measurePaced(const Film& film, int width, int bitrate, std::chrono::duration<double> interval);

}  // namespace zel::bench

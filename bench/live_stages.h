#pragma once

#include "bench/film.h"

namespace zel::bench {

// Milliseconds a picture, best of three turns: each stage alone, with nothing around it. The decoder and the encoder
// have one thread, the stitcher all.
struct StageCosts {
  double decode = 0, stitch = 0, encode = 0;
};
StageCosts measureStages(const Film& film, int width, int bitrate);

}  // namespace zel::bench

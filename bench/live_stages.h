#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zel::bench {

// A stream as the stages take it.
struct StageInput {
  std::vector<std::uint8_t> sps, pps;
  std::vector<std::vector<std::uint8_t>> slices;  // each behind its length
};
StageInput stageInput(const std::string& stream);

// Milliseconds a picture, best of three turns: each stage alone, with nothing around it. The decoder and the encoder
// have one thread, the stitcher all.
struct StageCosts {
  double decode = 0, stitch = 0, encode = 0;
};
StageCosts measureStages(const StageInput& input, int width, int bitrate);

}  // namespace zel::bench

#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/platform/ffmpeg/annex_b.h"

namespace zel::test {

struct StreamPlan {
  int width = 64, height = 48;
  int pictures = 10;
  std::map<std::string, std::string> options = {};  // of libx264, over those for low delay
  const char* pixelFormat = "yuv420p";
  int range = 2;  // 0 undeclared, 1 limited, 2 full: its samples are handed on as they are
  int primaries = 2, transfer = 2, matrix = 2;  // numbers of ITU-T H.273; 2 undeclared
};

// A stream of moving stripes by libx264: one key picture, no reordering, one slice a picture, unless the plan says
// else. Empty where libx264 cannot make it.
std::vector<Unit> makeStream(const StreamPlan& plan);

// The slices of a stream, and its parameter sets.
std::vector<Unit> slicesOf(const std::vector<Unit>& units);
Unit firstOf(const std::vector<Unit>& units, int type);

// MD5 of the pictures that FFmpeg decodes from the stream, called directly, one thread, every picture a packet.
std::string md5ByFfmpeg(const std::vector<Unit>& units);

}  // namespace zel::test

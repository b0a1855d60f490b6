#pragma once

#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace zel::bench {

// A line of the closing table: the time of one benchmark as a multiple of another's.
struct Ratio {
  std::string what;
  std::string measured;  // names as Google Benchmark prints them
  std::string against;
  double aim;  // at most; 0 where there is none
};

// Runs every benchmark several times, their repetitions interleaved, and prints the ratios of the best times.
// Only such ratios count: absolute times drift on a shared machine.
int runAndCompare(int argc, char** argv, const std::vector<Ratio>& ratios);

}  // namespace zel::bench

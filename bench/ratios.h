#pragma once

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace zel::bench {

// values: at least one.
inline double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::ranges::nth_element(values, middle);
  return *middle;
}

// A line of the closing table. aim: at most; 0 where there is none.
inline void printRatio(const std::string& what, double ratio, double aim) {
  std::printf("%-66s %8.2f ", what.c_str(), ratio);
  aim > 0 ? std::printf("<= %5.2f\n", aim) : std::printf("%8s\n", "-");
}

}  // namespace zel::bench

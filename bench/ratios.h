#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace zel::bench {

// values: at least one.
inline double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::ranges::nth_element(values, middle);
  return *middle;
}

// Where the command line asks for help: prints what the program does and takes, and ends it.
inline void answerHelp(int argc, char** argv, const char* usage) {
  const auto asks = [](const char* argument) {
    return std::string_view(argument) == "--help" || std::string_view(argument) == "-h";
  };
  if (std::none_of(argv + 1, argv + argc, asks)) return;
  std::puts(usage);
  std::exit(0);
}

// How many rounds the command line asks for; `./run bench` hands the options of Google Benchmark to every program, and
// they mean nothing here.
// Errors: below 1.
inline int roundsIn(int argc, char** argv, int usual) {
  return argc > 1 && argv[1][0] != '-' ? std::atoi(argv[1]) : usual;
}

// A line of the closing table. aim: at most; 0 where there is none.
inline void printRatio(const std::string& what, double ratio, double aim) {
  std::printf("%-66s %8.2f ", what.c_str(), ratio);
  aim > 0 ? std::printf("<= %5.2f\n", aim) : std::printf("%8s\n", "-");
}

}  // namespace zel::bench

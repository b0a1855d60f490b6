#pragma once

#include <string>
#include <vector>

namespace zel::bench {

struct ChildCost {
  double seconds = 0;
  double processorSeconds = 0;
};

// Runs a program to its end.
// Errors: ends this process where it cannot be run or fails.
ChildCost runChild(const std::vector<std::string>& command);

// What this process, and what the calling thread has used so far.
double processorSeconds();
double threadProcessorSeconds();

}  // namespace zel::bench

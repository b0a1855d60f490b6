#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

namespace zel::bench {

inline constexpr int kBatch = 1000;

// Times of one batch's exchanges. The caller starts the first; each completion starts the next.
class Batch {
 public:
  Batch() { times_.reserve(kBatch); }
  void begin() { start_ = Clock::now(); }
  // Returns whether another exchange is to follow.
  bool complete() {
    times_.push_back(std::chrono::duration<double>(Clock::now() - start_).count());
    return times_.size() < kBatch;
  }
  double median() {
    std::ranges::nth_element(times_, times_.begin() + kBatch / 2);
    return times_[kBatch / 2];
  }

 private:
  using Clock = std::chrono::steady_clock;

  std::vector<double> times_;
  Clock::time_point start_;
};

}  // namespace zel::bench

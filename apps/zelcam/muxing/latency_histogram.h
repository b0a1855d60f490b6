#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace zel::app {

// How long things took, to the millisecond, in a memory that does not grow. What took longer than it can tell counts
// as the longest.
// Units:  milliseconds.
class LatencyHistogram {
 public:
  static constexpr int kLongest = 9'999;

  void add(double milliseconds);

  // The least time that such a share of all did not exceed: 0.5 is the median. Nothing when there was none.
  std::optional<int> quantile(double share) const;

 private:
  std::array<std::uint32_t, kLongest + 1> counts_{};
  std::uint64_t all_ = 0;
};

}  // namespace zel::app

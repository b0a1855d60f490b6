#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace zel {

// A histogram of latencies in milliseconds, with constant memory. Longer latencies count as the longest.
// Units:  milliseconds.
class LatencyHistogram {
 public:
  static constexpr int kLongest = 9'999;

  void add(double milliseconds);

  // The quantile: 0.5 is the median. Nothing without values.
  std::optional<int> quantile(double share) const;

 private:
  std::array<std::uint32_t, kLongest + 1> counts_{};
  std::uint64_t all_ = 0;
};

}  // namespace zel

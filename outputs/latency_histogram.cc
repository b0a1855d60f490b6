#include "outputs/latency_histogram.h"

#include <algorithm>
#include <cmath>

namespace zel {

void LatencyHistogram::add(double milliseconds) {
  const double whole = std::clamp(std::ceil(milliseconds), 0.0, static_cast<double>(kLongest));
  ++counts_[static_cast<std::size_t>(whole)];
  ++all_;
}

std::optional<int> LatencyHistogram::quantile(double share) const {
  if (all_ == 0) return std::nullopt;
  const auto wanted = static_cast<std::uint64_t>(std::ceil(share * static_cast<double>(all_)));
  std::uint64_t seen = 0;
  for (int time = 0; time < kLongest; ++time) {
    seen += counts_[static_cast<std::size_t>(time)];
    if (seen >= std::max<std::uint64_t>(wanted, 1)) return time;
  }
  return kLongest;
}

}  // namespace zel

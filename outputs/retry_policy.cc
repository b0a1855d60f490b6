#include "outputs/retry_policy.h"

#include <cmath>

namespace zel {

std::optional<double> RetryPolicy::next(double lasted, double random) {
  if (lasted >= rules_.steady) attempt_ = 0;
  if (attempt_ >= rules_.most) return std::nullopt;
  const double wait = rules_.first * std::pow(rules_.growth, attempt_++);
  return wait * (1 + rules_.jitter * (2 * random - 1));
}

}  // namespace zel

#pragma once

#include <cmath>
#include <optional>

namespace zel {

// Units:  seconds.
struct RetryRules {
  int most = 20;  // attempts in a row
  double first = 2;
  double growth = 1.5;
  double jitter = 0.2;  // plus or minus up to this share
  double steady = 30;   // a connection that lasted this long resets the count
};

// The delay before each attempt to reconnect to a server.
class RetryPolicy {
 public:
  explicit RetryPolicy(RetryRules rules = {}) : rules_(rules) {}

  // The connection ended. lasted: its duration, 0 if there was none. random: 0 to 1.
  // Returns the delay before the next attempt; nothing after the last one.
  std::optional<double> next(double lasted, double random) {
    if (lasted >= rules_.steady) attempt_ = 0;
    if (attempt_ >= rules_.most) return std::nullopt;
    const double wait = rules_.first * std::pow(rules_.growth, attempt_++);
    return wait * (1 + rules_.jitter * (2 * random - 1));
  }

  int attempt() const { return attempt_; }  // the number of the attempt that next() has granted, 1 at first
  int most() const { return rules_.most; }

 private:
  const RetryRules rules_;
  int attempt_ = 0;
};

}  // namespace zel

#pragma once

#include <optional>

namespace zel::app {

// Units:  seconds.
struct RetryRules {
  int most = 20;  // attempts in a row
  double first = 2;
  double growth = 1.5;
  double jitter = 0.2;  // up to this share more or less
  double steady = 30;   // a connection that held so long was good: counting begins anew
};

// How long to wait before each new attempt to reach a server.
class RetryPolicy {
 public:
  explicit RetryPolicy(RetryRules rules = {}) : rules_(rules) {}

  // The connection ended. lasted: how long it had held, 0 where there was none. random: 0 to 1.
  // Returns the wait before the next attempt; nothing when there were enough.
  std::optional<double> next(double lasted, double random);

  int attempt() const { return attempt_; }  // the number of the one that next() has granted, 1 at first
  int most() const { return rules_.most; }

 private:
  const RetryRules rules_;
  int attempt_ = 0;
};

}  // namespace zel::app

#pragma once

#include <chrono>
#include <cstdint>

namespace zel::app {

// Counts pictures, and their rate from the first to the newest. The wait for the first one and a silence after the
// newest one do not count.
class PictureRate {
 public:
  using Clock = std::chrono::steady_clock;

  void note(Clock::time_point arrival) {
    if (pictures_++ == 0) first_ = arrival;
    newest_ = arrival;
  }

  std::int64_t pictures() const { return pictures_; }

  // 0 before the second picture.
  double perSecond() const {
    const double seconds = std::chrono::duration<double>(newest_ - first_).count();
    return seconds > 0 ? static_cast<double>(pictures_ - 1) / seconds : 0;
  }

 private:
  std::int64_t pictures_ = 0;
  Clock::time_point first_, newest_;
};

}  // namespace zel::app

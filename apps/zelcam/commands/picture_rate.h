#pragma once

#include <chrono>
#include <cstdint>

namespace zel::app {

// Whether a picture that is shown now is more than 200 ms behind its time. Its age is not computed: a camera may make
// up a time that is too far away for a difference.
// Units:  milliseconds.
constexpr bool isLate(std::int64_t timestamp, std::int64_t now) {
  constexpr std::int64_t kLate = 200;
  return timestamp < now - kLate;
}

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

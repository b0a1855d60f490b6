#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <limits>

namespace zel {

// A time limit for waits.
// Thread: any thread.
class Deadline {
 public:
  // Each wait may take that long from now on.
  //
  // Units: seconds.
  void allow(double seconds) { waitEnds_.store(after(seconds)); }
  // All waits together end after that time.
  void endWithin(double seconds) { allEnds_.store(after(seconds)); }

  bool isOver() const { return now() >= std::min(waitEnds_.load(), allEnds_.load()); }
  bool isEnding() const { return allEnds_.load() != kNever; }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

  static std::int64_t now() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch()).count();
  }
  static std::int64_t after(double seconds) { return now() + static_cast<std::int64_t>(seconds * 1000); }

  std::atomic<std::int64_t> waitEnds_ = kNever;
  std::atomic<std::int64_t> allEnds_ = kNever;
};

}  // namespace zel

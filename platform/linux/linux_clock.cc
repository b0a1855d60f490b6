#include "platform/linux/linux_clock.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace zel::platform {
namespace {

constexpr double kEpoch = 978307200.0;  // 1 January 2001 00:00:00 UTC, in seconds since 1970
constexpr double kLongestSleep = 1e9;   // seconds; more would overflow the clock's ticks

}  // namespace

double LinuxClock::absoluteTime() const {
  const std::chrono::duration<double> sinceUnixEpoch = std::chrono::system_clock::now().time_since_epoch();
  return sinceUnixEpoch.count() - kEpoch;
}

void LinuxClock::sleepFor(double seconds) {
  if (seconds > 0) std::this_thread::sleep_for(std::chrono::duration<double>(std::min(seconds, kLongestSleep)));
}

}  // namespace zel::platform

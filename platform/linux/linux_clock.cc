#include "platform/linux/linux_clock.h"

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
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

double LinuxClock::steadyTime() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void LinuxClock::sleepFor(double seconds) {
  if (seconds > 0) std::this_thread::sleep_for(std::chrono::duration<double>(std::min(seconds, kLongestSleep)));
}

std::int64_t LinuxClock::localTimeOffset(double absoluteTime) const {
  const auto time = static_cast<std::time_t>(std::floor(absoluteTime + kEpoch));
  std::tm local{};
  ::tzset();  // localtime_r() alone keeps the zone of the process's start
  return ::localtime_r(&time, &local) != nullptr ? local.tm_gmtoff : 0;
}

}  // namespace zel::platform

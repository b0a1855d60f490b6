#include "platform/linux/linux_clock.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace zel::platform {
namespace {

// The process's time zone during one test.
class TimeZone {
 public:
  explicit TimeZone(const char* name) { ::setenv("TZ", name, 1); }
  ~TimeZone() { ::unsetenv("TZ"); }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;
};

TEST(LinuxClock, TellsNoOffsetInUtc) {
  const TimeZone zone("UTC0");
  EXPECT_EQ(LinuxClock().localTimeOffset(731'062'800.0), 0);
}

TEST(LinuxClock, TellsHowFarLocalTimeIsAheadOfUtc) {
  const TimeZone zone("<+0545>-5:45");
  EXPECT_EQ(LinuxClock().localTimeOffset(731'062'800.0), 20'700);  // 5 h 45 min
}

TEST(LinuxClock, TellsSummerAndWinterTimeOfTheTimeAsked) {
  const TimeZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(LinuxClock().localTimeOffset(731'062'800.0), 3600);  // 2 March 2024
  EXPECT_EQ(LinuxClock().localTimeOffset(741'571'200.0), 7200);  // 2 July 2024
}

TEST(LinuxClock, FollowsAZoneThatChangesWhileTheProcessRuns) {
  const LinuxClock clock;
  {
    const TimeZone zone("EST5");
    EXPECT_EQ(clock.localTimeOffset(731'062'800.0), -18'000);
  }
  const TimeZone zone("JST-9");
  EXPECT_EQ(clock.localTimeOffset(731'062'800.0), 32'400);
}

}  // namespace
}  // namespace zel::platform

#include "apps/zelcam/commands/live_duration.h"

#include <gtest/gtest.h>

namespace zel::app {
namespace {

class LiveDurationTest : public testing::Test {
 protected:
  // Half a second later by the host's clock, and that many milliseconds by the stream's.
  void passes(int milliseconds, int times = 1) {
    for (int i = 0; i < times; ++i) {
      host += std::chrono::milliseconds(500);
      stream += milliseconds;
      duration.note(host, stream * 1000);
    }
  }

  LiveDuration::TimePoint host{};
  std::int64_t stream = 0;
  LiveDuration duration{10.0};
};

TEST_F(LiveDurationTest, OfAStreamThatGoesOnIsTheStreams) {
  duration.note(host, 0);
  passes(500, 19);
  EXPECT_FALSE(duration.isOver());
  EXPECT_DOUBLE_EQ(*duration.left(), 0.5);
  passes(500);
  EXPECT_TRUE(duration.isOver());
  EXPECT_DOUBLE_EQ(duration.stoodStill(), 0);
}

TEST_F(LiveDurationTest, OfAStreamThatIsMerelySlowIsTheStreams) {
  duration.note(host, 0);
  passes(100, 99);  // a fifth of the host's pace
  EXPECT_FALSE(duration.isOver());
  EXPECT_DOUBLE_EQ(duration.stoodStill(), 0);
}

TEST_F(LiveDurationTest, WhereTheStreamStandsStillIsTheHosts) {
  duration.note(host, 0);
  passes(500, 8);  // 4 s of both
  passes(0, 11);   // and 5.5 s of the host's
  EXPECT_FALSE(duration.isOver());
  passes(0);
  EXPECT_TRUE(duration.isOver());
}

// Pictures whose times do not move are put a millisecond apart.
TEST_F(LiveDurationTest, ACameraWhoseClockStandsEndsToo) {
  duration.note(host, 0);
  passes(15, 20);
  EXPECT_TRUE(duration.isOver());
}

TEST_F(LiveDurationTest, GoesOnWithTheStream) {
  duration.note(host, 0);
  passes(500, 8);
  passes(0, 8);  // 4 s
  passes(500, 3);
  EXPECT_FALSE(duration.isOver());
  EXPECT_NEAR(*duration.left(), 0.5, 1e-9);
  passes(500);
  EXPECT_TRUE(duration.isOver());
}

TEST_F(LiveDurationTest, APauseThatIsMadeUpForCountsNothing) {
  duration.note(host, 0);
  passes(0, 4);     // 2 s
  passes(2500, 1);  // and all of it at once
  EXPECT_NEAR(*duration.left(), 7.5, 1e-9);
  passes(0, 8);  // 4 s, which count for now
  passes(4500);
  EXPECT_NEAR(*duration.left(), 3, 1e-9);
  EXPECT_NEAR(duration.stoodStill(), 0, 1e-9);
}

TEST_F(LiveDurationTest, BeginsWithTheFirstPicture) {
  for (int i = 0; i < 100; ++i) duration.note(host += std::chrono::seconds(1), std::nullopt);
  EXPECT_DOUBLE_EQ(*duration.left(), 10);
}

TEST_F(LiveDurationTest, IsNeverOverWhereNoneWasAskedFor) {
  LiveDuration endless(std::nullopt);
  endless.note(host, 0);
  endless.note(host + std::chrono::hours(1), 0);
  EXPECT_FALSE(endless.isOver());
  EXPECT_FALSE(endless.left());
}

}  // namespace
}  // namespace zel::app

#include "platform/linux/loop_alarm.h"

#include <gtest/gtest.h>

#include <thread>

namespace zel::platform {
namespace {

class LoopAlarmTest : public testing::Test {
 protected:
  // Runs what is due.
  int callsAfterPolling() {
    context_.restart();
    context_.poll();
    return calls_;
  }

  asio::io_context context_;
  int calls_ = 0;
  LoopAlarm alarm_{context_, [this] { ++calls_; }};
};

TEST_F(LoopAlarmTest, IsSilentUntilItIsRung) { EXPECT_EQ(callsAfterPolling(), 0); }

TEST_F(LoopAlarmTest, CallsOnceForAnyNumberOfRings) {
  alarm_.ring();
  alarm_.ring();
  EXPECT_EQ(callsAfterPolling(), 1);
  EXPECT_EQ(callsAfterPolling(), 1);
}

TEST_F(LoopAlarmTest, CallsAgainWhenItIsRungAgain) {
  for (int ring = 1; ring <= 3; ++ring) {
    alarm_.ring();
    EXPECT_EQ(callsAfterPolling(), ring);
  }
}

TEST_F(LoopAlarmTest, WakesAContextThatSleeps) {
  std::thread other([this] { alarm_.ring(); });
  context_.run_one();
  other.join();
  EXPECT_EQ(calls_, 1);
}

}  // namespace
}  // namespace zel::platform

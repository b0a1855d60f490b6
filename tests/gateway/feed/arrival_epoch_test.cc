#include "gateway/feed/arrival_epoch.h"

#include <gtest/gtest.h>

namespace zel::gateway {
namespace {

TEST(ArrivalEpochTest, OnePictureTellsItAndMoreMakeItTheirMean) {
  ArrivalEpoch epoch;
  epoch.note(1'000'000, 200'000);
  EXPECT_EQ(epoch.epoch(), 800'000);
  epoch.note(1'010'000, 200'000);  // 10 ms late
  EXPECT_EQ(epoch.epoch(), 805'000);
  epoch.note(1'020'000, 200'000);  // 15 ms later than the mean, a third of which counts
  EXPECT_EQ(epoch.epoch(), 810'000);
}

TEST(ArrivalEpochTest, AClockThatDriftsIsFollowed) {
  ArrivalEpoch epoch;
  for (int i = 0; i < 1'000; ++i) epoch.note(1'000'000, 0);
  for (int i = 0; i < 1'000; ++i) epoch.note(1'050'000, 0);
  EXPECT_NEAR(static_cast<double>(epoch.epoch()), 1'050'000, 40);
}

TEST(ArrivalEpochTest, AnotherConnectionForgetsTheOneBefore) {
  ArrivalEpoch epoch;
  epoch.note(1'000'000, 0);
  epoch.restart();
  epoch.note(9'000'000, 500'000);
  EXPECT_EQ(epoch.epoch(), 8'500'000);
}

}  // namespace
}  // namespace zel::gateway

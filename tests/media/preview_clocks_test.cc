#include "media/preview_clocks.h"

#include <gtest/gtest.h>

#include <limits>

namespace zel::test {
namespace {

constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kFirst = std::numeric_limits<std::int64_t>::min();

TEST(PreviewClocksTest, AdvancesVideoByWholeMilliseconds) {
  PreviewClocks clocks;
  clocks.advanceVideo();
  clocks.advanceVideo();
  EXPECT_EQ(clocks.video, 66);
  clocks.fps = 15;
  clocks.advanceVideo();
  EXPECT_EQ(clocks.video, 132);
}

TEST(PreviewClocksTest, StandsStillAtNoRate) {
  PreviewClocks clocks;
  clocks.fps = 0;
  clocks.advanceVideo();
  EXPECT_EQ(clocks.video, 0);
}

TEST(PreviewClocksTest, StartsAudioAtTheVideoTimeOnceTheSetsWereSent) {
  PreviewClocks clocks;
  clocks.video = 330;
  clocks.advanceAudio();
  EXPECT_EQ(clocks.audio, 0);
  clocks.parameterSetsSent = true;
  clocks.advanceAudio();
  EXPECT_EQ(clocks.audio, 351);
  EXPECT_EQ(clocks.video, 330);
}

TEST(PreviewClocksTest, LeavesAudioStoppedWhileVideoStandsAtZero) {
  PreviewClocks clocks;
  clocks.parameterSetsSent = true;
  clocks.advanceAudio();
  EXPECT_EQ(clocks.audio, 0);
}

// 48 steps of 21 ms are the first to come to a second.
TEST(PreviewClocksTest, SetsBothToTheLaterOnceASecond) {
  PreviewClocks clocks;
  clocks.video = 100;
  clocks.parameterSetsSent = true;
  for (int i = 0; i < 47; ++i) clocks.advanceAudio();
  EXPECT_EQ(clocks.audio, 1087);
  clocks.video = 1500;
  clocks.advanceAudio();
  EXPECT_EQ(clocks.audio, 1500);
  EXPECT_EQ(clocks.video, 1500);
  for (int i = 0; i < 48; ++i) clocks.advanceAudio();
  EXPECT_EQ(clocks.audio, 2508);
  EXPECT_EQ(clocks.video, 2508);
}

TEST(PreviewClocksTest, StopsAudioForAnotherDelegate) {
  PreviewClocks clocks;
  clocks.video = 100;
  clocks.parameterSetsSent = true;
  clocks.advanceAudio();
  clocks.restartAudio();
  clocks.advanceAudio();
  EXPECT_EQ(clocks.audio, 0);
}

TEST(PreviewClocksTest, WrapsAtTheEndsOfTime) {
  PreviewClocks clocks;
  clocks.video = kLast;
  clocks.advanceVideo();
  EXPECT_EQ(clocks.video, kFirst + 32);
  clocks.audio = kLast;
  clocks.advanceAudio();
  EXPECT_EQ(clocks.audio, kFirst + 20);
  clocks.audio = kLast - 21;
  clocks.advanceAudio();
  EXPECT_EQ(clocks.audio, kLast);
  EXPECT_EQ(clocks.video, kLast);
}

}  // namespace
}  // namespace zel::test

#include "live/encode_stage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/live/live_test.h"

namespace zel::test {
namespace {

class EncodeStageTest : public testing::Test {
 protected:
  EncodeStageTest() { stage.install(stage.open({8, 4, 1, 30})); }

  void append(int count) {
    for (int i = 0; i < count; ++i) stage.append(std::make_shared<orq::MediaPixelBuffer>(pictureOf(1), i));
  }
  // Lets the thread take so many turns. Returns how often it failed.
  int run(int turns) {
    int failures = 0;
    stage.run([&] { return turns-- == 0; }, [&] { ++failures; });
    return failures;
  }

  platform::SimulatedPlatform host;
  platform::ScriptedVideoEncoders encoders;
  EncodeStage stage{host.ports().clock, &encoders};
};

TEST_F(EncodeStageTest, TriesAPictureFourTimes) {
  encoders.failPictures(3);
  append(1);
  EXPECT_EQ(run(1), 0);
  EXPECT_EQ(encoders.attempts(), 4u);
  EXPECT_EQ(stage.encodeFailCount(), 0);
  encoders.failPictures(4);
  append(1);
  EXPECT_EQ(run(1), 0);
  EXPECT_EQ(encoders.attempts(), 8u);
  EXPECT_EQ(stage.encodeFailCount(), 1);
}

TEST_F(EncodeStageTest, FailsAtTheFifthPictureInARow) {
  encoders.failPictures(20);
  append(5);
  EXPECT_EQ(run(4), 0);
  EXPECT_EQ(stage.encodeFailCount(), 4);
  EXPECT_EQ(run(100), 1);
  EXPECT_EQ(stage.encodeFailCount(), 0);
}

TEST_F(EncodeStageTest, ForgetsFailuresAtASuccess) {
  encoders.failPictures(16);
  append(5);
  EXPECT_EQ(run(5), 0);
  EXPECT_EQ(stage.encodeFailCount(), 0);
  encoders.failPictures(16);
  append(4);
  EXPECT_EQ(run(4), 0);
  LiveStatistics statistics;
  stage.copyStatistics(statistics);
  EXPECT_EQ(statistics.notEncoded, 8u);
  EXPECT_EQ(statistics.encoded, 1u);
}

TEST_F(EncodeStageTest, FailsWithoutAnEncoder) {
  stage.install(nullptr);
  append(5);
  EXPECT_EQ(run(5), 1);
  EXPECT_EQ(encoders.attempts(), 0u);
}

TEST_F(EncodeStageTest, LetsAnEncoderLiveUntilItsPictureIsDone) {
  std::size_t liveMeanwhile = 0;
  encoders.onEncode([&] {
    stage.install(nullptr);
    liveMeanwhile = encoders.live();
  });
  append(1);
  run(1);
  EXPECT_EQ(liveMeanwhile, 1u);
  EXPECT_EQ(encoders.live(), 0u);
}

TEST_F(EncodeStageTest, OpensNothingWhereThereIsNothing) {
  encoders.failOpenings(1);
  EXPECT_EQ(stage.open({8, 4, 1, 30}), nullptr);
  encoders.failCreations(1);
  EXPECT_EQ(stage.open({8, 4, 1, 30}), nullptr);
  EncodeStage without(host.ports().clock, nullptr);
  EXPECT_EQ(without.open({8, 4, 1, 30}), nullptr);
}

}  // namespace
}  // namespace zel::test

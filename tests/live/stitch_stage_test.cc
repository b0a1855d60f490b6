#include "live/stitch_stage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/live/live_test.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class StitchStageTest : public testing::Test {
 protected:
  // A render thread that runs until the test says so.
  void startThread() {
    host.ports().queues.globalQueue().post([this] {
      stage.run([this] { return over; }, [this](const LiveFrame& stitched) { times.push_back(stitched->timestamp); });
    });
    host.runUntilIdle();
  }
  void append(std::int64_t time) { stage.append(std::make_shared<orq::MediaPixelBuffer>(pictureOf(1), time)); }

  platform::SimulatedPlatform host;
  platform::ScriptedMediaLibrary library;
  LiveSettings settings{3, 8, 4, 1};
  StitchStage stage{host.ports().clock, &library, settings};
  bool over = false;
  std::vector<std::int64_t> times;
};

TEST_F(StitchStageTest, TakesAPictureAsSoonAsItComes) {
  startThread();
  append(1);
  append(2);
  host.runUntilIdle();
  EXPECT_THAT(times, ElementsAre(1, 2));
  append(3);
  host.runUntilIdle();
  EXPECT_THAT(times, ElementsAre(1, 2, 3));
}

TEST_F(StitchStageTest, LooksForTheEndEveryTenMilliseconds) {
  startThread();
  over = true;
  host.advance(0.009);
  EXPECT_EQ(host.liveTasks(), 1u);
  host.advance(0.002);
  EXPECT_EQ(host.liveTasks(), 0u);
}

TEST_F(StitchStageTest, MakesTheRendererAtTheFirstPictureAndDropsItAtTheEnd) {
  startThread();
  host.advance(1);
  EXPECT_EQ(library.created, 0);
  append(1);
  append(2);
  host.advance(0.02);
  EXPECT_EQ(library.created, 1);
  EXPECT_EQ(library.live, 1);
  over = true;
  host.advance(0.02);
  EXPECT_EQ(library.live, 0);
}

TEST_F(StitchStageTest, DoesNothingWhereTheRunIsOverAlready) {
  over = true;
  append(1);
  startThread();
  EXPECT_EQ(host.liveTasks(), 0u);
  EXPECT_THAT(times, IsEmpty());
}

TEST_F(StitchStageTest, IsJoinedByWaitingForTheThread) {
  startThread();
  over = true;
  stage.join();
  stage.join();
  host.runUntilIdle();
  EXPECT_EQ(host.liveTasks(), 0u);
}

// What a renderer's end takes does not keep those waiting who join the thread.
TEST_F(StitchStageTest, DropsTheRendererAfterItCanBeJoined) {
  bool joined = false;
  library.onDestroy = [&] {
    stage.join();
    joined = true;
  };
  startThread();
  append(1);
  host.runUntilIdle();
  over = true;
  host.advance(0.02);
  EXPECT_TRUE(joined);
  EXPECT_EQ(library.live, 0);
  library.onDestroy = {};
}

TEST_F(StitchStageTest, LetsASecondThreadWaitForTheFirst) {
  startThread();
  startThread();
  append(1);
  append(2);
  host.advance(0.02);
  EXPECT_THAT(times, ElementsAre(1, 2));
  EXPECT_EQ(library.created, 1);
  over = true;
  host.advance(0.02);
  EXPECT_EQ(host.liveTasks(), 0u);
}

TEST_F(StitchStageTest, StitchesNothingWithoutALibrary) {
  StitchStage without(host.ports().clock, nullptr, settings);
  without.append(std::make_shared<orq::MediaPixelBuffer>(pictureOf(1), 1));
  int looks = 0;
  without.run([&] { return ++looks > 1; }, [](const LiveFrame&) { FAIL(); });
  LiveStatistics statistics;
  without.copyStatistics(statistics);
  EXPECT_EQ(statistics.notStitched, 1u);
}

}  // namespace
}  // namespace zel::test

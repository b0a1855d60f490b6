#include "live/live_run.h"

#include <gtest/gtest.h>

namespace zel::test {
namespace {

TEST(LiveRunTest, IsCancelledAndNotLiveBeforeAnyStart) {
  const LiveRun run;
  EXPECT_EQ(run.state(), LiveState::idle);
  EXPECT_FALSE(run.isLive());
  EXPECT_TRUE(run.cancelled());
}

TEST(LiveRunTest, IsLiveFromItsStartToTheEndOfItsStop) {
  LiveRun run;
  run.begin();
  EXPECT_EQ(run.state(), LiveState::running);
  EXPECT_TRUE(run.isLive() && !run.cancelled());
  EXPECT_TRUE(run.beginStop());
  EXPECT_TRUE(run.isLive() && run.cancelled());
  run.endStop();
  EXPECT_EQ(run.state(), LiveState::idle);
}

TEST(LiveRunTest, StopsOnceAndNotBeforeAStart) {
  LiveRun run;
  EXPECT_FALSE(run.beginStop());
  run.begin();
  EXPECT_TRUE(run.beginStop());
  EXPECT_FALSE(run.beginStop());
}

TEST(LiveRunTest, IsOverForALateStepOfARunThatWasStopped) {
  LiveRun run;
  run.begin();
  const std::uint64_t first = run.number();
  EXPECT_FALSE(run.isOver(first));
  run.beginStop();
  EXPECT_TRUE(run.isOver(first));
  run.endStop();
  run.begin();
  EXPECT_TRUE(run.isOver(first));
  EXPECT_FALSE(run.isOver(run.number()));
}

TEST(LiveRunTest, AStartInsideAStopIsNeitherLiveNorCancelledOnceThatStopEnds) {
  LiveRun run;
  run.begin();
  run.beginStop();
  run.begin();
  run.endStop();
  EXPECT_EQ(run.state(), LiveState::outlived);
  EXPECT_FALSE(run.isLive() || run.cancelled());
  EXPECT_TRUE(run.beginStop());
}

}  // namespace
}  // namespace zel::test

#include "link/link_state.h"

#include <gmock/gmock.h>

#include <vector>

#include "platform/simulated/simulated_platform.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LinkStateTest : public testing::Test {
 protected:
  void open() {
    state.opened([] { return true; });
  }
  void pass(double seconds) { simulation.advance(seconds); }

  platform::SimulatedPlatform simulation;
  LinkState state{simulation.ports().clock};
  std::vector<std::uint64_t> told;
  Observation observation = state.observe([this](std::uint64_t status) { told.push_back(status); });
};

TEST_F(LinkStateTest, GoesFromClosedByOpenToFlowingAndTellsEachChangeOnce) {
  EXPECT_EQ(state.status(), LinkStatus::closed);
  open();
  open();
  state.received();
  state.received();
  state.close();
  state.close();
  EXPECT_THAT(told, ElementsAre(1, 2, 0));
}

TEST_F(LinkStateTest, StaysClosedWhereTheSessionHasBeenClosedMeanwhile) {
  state.opened([] { return false; });
  EXPECT_EQ(state.status(), LinkStatus::closed);
  EXPECT_EQ(state.lastReceived(), -1.0);
}

TEST_F(LinkStateTest, ALastFrameDoesNotBringAClosedConnectionBackToLife) {
  open();
  state.close();
  state.received();
  EXPECT_EQ(state.status(), LinkStatus::closed);
  EXPECT_EQ(state.lastReceived(), -1.0);
}

TEST_F(LinkStateTest, AFreshSessionIsSilentAfterMoreThanFiveSeconds) {
  open();
  pass(5.0);
  state.checkSilence(LinkStatus::open);
  EXPECT_EQ(state.status(), LinkStatus::open);
  pass(0.5);
  state.checkSilence(LinkStatus::open);
  EXPECT_EQ(state.status(), LinkStatus::silent);
}

TEST_F(LinkStateTest, ARunningOneIsSilentAfterMoreThanThreeSecondsAndFlowsAgainWithAFrame) {
  open();
  state.received();
  pass(3.0);
  state.checkSilence(LinkStatus::flowing);
  EXPECT_EQ(state.status(), LinkStatus::flowing);
  pass(0.5);
  state.checkSilence(LinkStatus::flowing);
  EXPECT_EQ(state.status(), LinkStatus::silent);
  state.received();
  EXPECT_EQ(state.status(), LinkStatus::flowing);
}

TEST_F(LinkStateTest, ACheckThatSawAnotherStateChangesNothing) {
  open();
  state.received();
  pass(10.0);
  open();  // reopened while the check was under way
  pass(4.0);
  state.checkSilence(LinkStatus::flowing);
  EXPECT_EQ(state.status(), LinkStatus::open);
}

TEST_F(LinkStateTest, AClosedLinkIsNeverSilent) {
  pass(100.0);
  state.checkSilence(LinkStatus::closed);
  EXPECT_EQ(state.status(), LinkStatus::closed);
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(LinkStateTest, KeepsTheClocksOffsetWhileASessionIsUpAlone) {
  state.setTimeOffset(7);
  EXPECT_EQ(state.timeOffset(), 0);
  open();
  state.setTimeOffset(-42);
  EXPECT_EQ(state.timeOffset(), -42);
  state.close();
  EXPECT_EQ(state.timeOffset(), 0);
}

}  // namespace
}  // namespace zel::test

#include "facade/openings.h"

#include <gmock/gmock.h>

#include <stop_token>

#include "tests/facade/bus_camera.h"

namespace zel::test {
namespace {

using Reason = CameraError::Reason;
using Ends = std::vector<std::optional<Reason>>;

// Waits, and how they ended.
class OpeningsTest : public testing::Test {
 protected:
  Openings::Id add() {
    return openings.add([this](const std::optional<CameraError>& why) {
      ends.push_back(why ? std::optional(why->reason) : std::nullopt);
    });
  }

  Openings openings;
  Ends ends;
};

TEST_F(OpeningsTest, EndEachWaitOnce) {
  const auto first = add();
  add();
  EXPECT_FALSE(openings.areNone());
  openings.end(first, CameraError{Reason::timeLimit, "late"});
  openings.end(first, CameraError{Reason::cancelled, "again"});
  openings.endAll(std::nullopt);
  openings.endAll(std::nullopt);
  EXPECT_THAT(ends, testing::ElementsAre(Reason::timeLimit, std::nullopt));
  EXPECT_TRUE(openings.areNone());
}

TEST_F(OpeningsTest, EndTheWatchOfAWaitWithIt) {
  const auto watch = std::make_shared<int>(0);
  const auto open = add(), ended = add();
  openings.end(ended, std::nullopt);
  openings.keep(open, watch);
  openings.keep(ended, watch);
  EXPECT_EQ(watch.use_count(), 2) << "the one of the wait that goes on";
  openings.endAll(std::nullopt);
  EXPECT_EQ(watch.use_count(), 1);
}

TEST_F(OpeningsTest, MayBeginAnotherWaitWhereOneEnds) {
  openings.add([this](const auto&) { add(); });
  openings.endAll(std::nullopt);
  EXPECT_FALSE(openings.areNone());
}

// On real threads.
class StoppedOpeningsTest : public BusCamera {};

TEST_F(StoppedOpeningsTest, EndAtOnceWhereTheStopWasRequestedBefore) {
  std::stop_source stop;
  stop.request_stop();
  for (int round = 0; round < 50; ++round) {
    EXPECT_EQ(Camera::open(options(), {.stop = stop.get_token()}).get().error().reason, Reason::cancelled);
    Camera camera = *Camera::create(options());
    EXPECT_EQ(camera.connect({.stop = stop.get_token()}).get().error().reason, Reason::cancelled);
  }
}

}  // namespace
}  // namespace zel::test

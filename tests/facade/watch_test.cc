#include "facade/watch.h"

#include <gtest/gtest.h>

#include <optional>

#include "platform/simulated/simulated_platform.h"

namespace zel::test {
namespace {

using Reason = CameraError::Reason;
using std::chrono::seconds;

// A wait of ten seconds in virtual time.
class WatchTest : public testing::Test {
 protected:
  ~WatchTest() override {
    watch.reset();
    deadlines->close();
  }

  void begin(std::stop_token stop = {}) {
    watch = Watch::create(
        deadlines, callbacks, {.timeLimit = seconds(10), .stop = std::move(stop)},
        [this](const CameraError& why) { end = why.reason; }, moved);
  }

  platform::SimulatedPlatform host;
  const std::shared_ptr<Deadlines> deadlines = std::make_shared<Deadlines>(host.ports());
  const std::shared_ptr<CallbackQueue> callbacks =
      std::make_shared<CallbackQueue>(host.ports().queues.mainQueue(), Executor());
  std::shared_ptr<Movement> moved;
  std::shared_ptr<Watch> watch;
  std::optional<Reason> end;
};

TEST_F(WatchTest, EndsAWaitAtItsLimit) {
  begin();
  host.advance(9.9);
  EXPECT_FALSE(end);
  host.advance(0.2);
  EXPECT_EQ(end, Reason::timeLimit);
}

TEST_F(WatchTest, CountsFromTheLatestMovement) {
  moved = std::make_shared<Movement>(0);
  begin();
  host.advance(8);
  moved->store(deadlines->now());
  host.advance(9);
  moved->store(deadlines->now());
  host.advance(9.9);
  EXPECT_FALSE(end);
  host.advance(0.2);
  EXPECT_EQ(end, Reason::timeLimit);
}

TEST_F(WatchTest, EndsATransferThatNeverMoves) {
  moved = std::make_shared<Movement>(0);
  begin();
  host.advance(10.1);
  EXPECT_EQ(end, Reason::timeLimit);
}

TEST_F(WatchTest, EndsAWaitThatIsStopped) {
  std::stop_source stop;
  begin(stop.get_token());
  stop.request_stop();
  host.runUntilIdle();
  EXPECT_EQ(end, Reason::cancelled);
}

TEST_F(WatchTest, EndsNothingAfterItsOwnEnd) {
  begin();
  watch.reset();
  host.advance(60);
  EXPECT_FALSE(end);
}

}  // namespace
}  // namespace zel::test

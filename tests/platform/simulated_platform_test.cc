#include "platform/simulated/simulated_platform.h"

#include <gmock/gmock.h>

#include <semaphore>
#include <stdexcept>

namespace zel::platform {
namespace {

using testing::ElementsAre;

TEST(SimulatedPlatform, WakesSleepingTasksInTheOrderOfTheirTime) {
  SimulatedPlatform host;
  const double start = host.now();
  std::vector<double> woke;
  const auto sleep = [&](double seconds) {
    host.ports().queues.globalQueue().post([&, seconds] {
      host.ports().clock.sleepFor(seconds);
      woke.push_back(host.now() - start);
    });
  };
  sleep(3);
  sleep(1);
  sleep(2);
  host.runUntilIdle();
  EXPECT_TRUE(woke.empty());
  host.advance(2.5);
  EXPECT_THAT(woke, ElementsAre(1, 2));
  EXPECT_EQ(host.liveTasks(), 1u);
  host.advance(1);
  EXPECT_THAT(woke, ElementsAre(1, 2, 3));
  EXPECT_EQ(host.liveTasks(), 0u);
}

TEST(SimulatedPlatform, DropsTasksThatHaveNotBegunWhenItEnds) {
  const auto held = std::make_shared<int>(1);
  {
    SimulatedPlatform host;
    host.ports().queues.globalQueue().post([held] { FAIL(); });
    EXPECT_EQ(held.use_count(), 2);
  }
  EXPECT_EQ(held.use_count(), 1);
}

TEST(SimulatedPlatform, LeavesATaskThatWaitsForGoodWhereItIs) {
  const auto never = std::make_shared<std::binary_semaphore>(0);
  bool went = false;
  {
    SimulatedPlatform host;
    host.ports().queues.globalQueue().post([&host, &went, never] {
      host.ports().clock.acquire(*never);
      went = true;
    });
    host.advance(60);
    EXPECT_EQ(host.liveTasks(), 1u);
  }
  EXPECT_FALSE(went);
  EXPECT_EQ(never.use_count(), 2);
}

TEST(SimulatedPlatform, SaysThatACallerWaitsForGood) {
  SimulatedPlatform host;
  std::binary_semaphore never(0);
  EXPECT_THROW(host.ports().clock.acquire(never), std::runtime_error);
}

}  // namespace
}  // namespace zel::platform

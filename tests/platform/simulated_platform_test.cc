#include "platform/simulated/simulated_platform.h"

#include <gmock/gmock.h>

#include <memory>
#include <semaphore>
#include <stdexcept>
#include <string>
#include <vector>

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

TEST(SimulatedPlatform, RunsTasksAndTimersInTheOrderOfTheirTimes) {
  SimulatedPlatform host;
  std::string order;
  const auto timer = host.ports().threads.currentRunLoop().scheduleRepeating(0.5, [&] { order += 't'; });
  for (const char name : {'a', 'b'}) {
    host.ports().queues.globalQueue().post([&, name] {
      // 'a' at 0.2, 0.6 and 1.0; 'b' at 0.3, 0.7 and 1.1
      host.ports().clock.sleepFor(name == 'a' ? 0.2 : 0.3);
      for (int time = 0; time < 3; ++time) {
        order += name;
        host.ports().clock.sleepFor(0.4);
      }
    });
  }
  host.advance(0.35);
  EXPECT_EQ(order, "ab");
  host.advance(0.3);
  EXPECT_EQ(order, "abta");
  host.advance(0.1);
  EXPECT_EQ(order, "abtab");
  host.advance(60);
  EXPECT_EQ(order.substr(0, 5), "abtab");
  EXPECT_EQ(host.liveTasks(), 0u);
}

// The second one resumes the first when it stops, and the scheduler goes on when that has ended.
TEST(SimulatedPlatform, ATaskThatAnotherOneLetsRunMayEnd) {
  SimulatedPlatform host;
  std::binary_semaphore told(0);
  std::string order;
  host.ports().queues.globalQueue().post([&] {
    host.ports().clock.acquire(told);
    order += "heard ";
  });
  host.ports().queues.globalQueue().post([&] {
    host.ports().clock.sleepFor(1);
    told.release();
    host.ports().clock.sleepFor(1);
    order += "over";
  });
  host.advance(1.5);
  EXPECT_EQ(host.liveTasks(), 1u);
  host.advance(1);
  EXPECT_EQ(order, "heard over");
  EXPECT_EQ(host.liveTasks(), 0u);
}

// Nor does the time pass beyond that, though a task is ready later.
TEST(SimulatedPlatform, AWaitLetsTasksRunOnlyUntilItIsOver) {
  SimulatedPlatform host;
  const double start = host.now();
  int steps = 0;
  host.ports().queues.globalQueue().post([&] {
    for (; steps < 10; ++steps) host.ports().clock.sleepFor(0.1);
  });
  std::binary_semaphore never(0);
  EXPECT_FALSE(host.ports().clock.acquireFor(never, 0.45));
  EXPECT_EQ(steps, 4);
  EXPECT_NEAR(host.now() - start, 0.45, 1e-6);
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

#include <gmock/gmock.h>

#include <semaphore>

#include "tests/platform/harness.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;
using QueuesConformance = Conformance;

TEST_P(QueuesConformance, RunsTheMainQueueInTheOrderOfPosting) {
  Log<int> ran;
  for (int i = 1; i <= 4; ++i) ports.queues.mainQueue().post([&, i] { ran.add(i); });
  ASSERT_TRUE(runUntil([&] { return ran.size() == 4; }));
  EXPECT_THAT(ran.all(), ElementsAre(1, 2, 3, 4));
}

TEST_P(QueuesConformance, NeverRunsATaskInsideThePost) {
  Log<int> ran;
  ports.queues.mainQueue().post([&] {
    ports.queues.mainQueue().post([&] { ran.add(2); });
    ran.add(1);
  });
  EXPECT_EQ(ran.size(), 0U);
  ASSERT_TRUE(runUntil([&] { return ran.size() == 2; }));
  EXPECT_THAT(ran.all(), ElementsAre(1, 2));
}

TEST_P(QueuesConformance, RunsTheMainQueueWhereTheMainRunLoopIsCurrent) {
  auto& main = ports.threads.currentRunLoop();
  Log<bool> same;
  ports.queues.mainQueue().post([&] { same.add(&ports.threads.currentRunLoop() == &main); });
  ASSERT_TRUE(runUntil([&] { return same.size() == 1; }));
  EXPECT_THAT(same.all(), ElementsAre(true));
}

TEST_P(QueuesConformance, TakesMainQueueTasksFromOtherThreads) {
  Log<int> ran;
  const auto thread = startThread();
  thread->runLoop().perform([&] { ports.queues.mainQueue().post([&] { ran.add(1); }); });
  EXPECT_TRUE(runUntil([&] { return ran.size() == 1; }));
}

TEST_P(QueuesConformance, RunsEveryTaskOfTheGlobalQueueOnce) {
  Log<int> ran;
  for (int i = 1; i <= 4; ++i) ports.queues.globalQueue().post([&, i] { ran.add(i); });
  ASSERT_TRUE(runUntil([&] { return ran.size() == 4; }));
  EXPECT_THAT(ran.all(), UnorderedElementsAre(1, 2, 3, 4));
}

TEST_P(QueuesConformance, LetsATaskOfTheGlobalQueueWaitForALaterOne) {
  Log<int> ran;
  std::binary_semaphore semaphore(0);
  ports.queues.globalQueue().post([&] {
    ports.clock.acquire(semaphore);
    ran.add(2);
  });
  ports.queues.globalQueue().post([&] {
    ran.add(1);
    semaphore.release();
  });
  ASSERT_TRUE(runUntil([&] { return ran.size() == 2; }));
  EXPECT_THAT(ran.all(), ElementsAre(1, 2));
}

TEST_P(QueuesConformance, GivesAGlobalQueueTaskTheMainRunLoop) {
  auto& main = ports.threads.currentRunLoop();
  Log<bool> same;
  ports.queues.globalQueue().post([&] { same.add(&ports.threads.currentRunLoop() == &main); });
  ASSERT_TRUE(runUntil([&] { return same.size() == 1; }));
  EXPECT_THAT(same.all(), ElementsAre(true));
}

ZEL_CONFORMANCE_SUITE(QueuesConformance);

}  // namespace
}  // namespace zel::test

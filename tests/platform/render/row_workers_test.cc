#include "platform/render/row_workers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>

namespace zel::render {
namespace {

TEST(RowWorkersTest, RunEveryTaskOfEveryJobOnce) {
  RowWorkers workers(3);
  std::array<std::atomic<int>, 100> runs{};
  for (int job = 0; job < 200; ++job) workers.run(runs.size(), [&](std::size_t task, std::size_t) { ++runs[task]; });
  for (const auto& count : runs) EXPECT_EQ(count, 200);
}

TEST(RowWorkersTest, NeverRunTwoTasksOfOneWorkerAtATime) {
  RowWorkers workers(4);
  ASSERT_EQ(workers.count(), 4u);
  std::array<std::atomic<int>, 4> inside{};
  std::atomic<int> faults{0};
  workers.run(1000, [&](std::size_t, std::size_t worker) {
    if (worker >= 4 || inside[worker].fetch_add(1) != 0) ++faults;
    --inside[worker];
  });
  EXPECT_EQ(faults, 0);
}

TEST(RowWorkersTest, RunNothingForAJobWithoutTasks) {
  RowWorkers workers(2);
  workers.run(0, [](std::size_t, std::size_t) { ADD_FAILURE(); });
}

TEST(RowWorkersTest, AreTheCallerAloneIfOneIsWanted) {
  RowWorkers workers(1);
  EXPECT_EQ(workers.count(), 1u);
  const auto caller = std::this_thread::get_id();
  workers.run(3, [&](std::size_t, std::size_t) { EXPECT_EQ(std::this_thread::get_id(), caller); });
}

TEST(RowWorkersTest, AreBoundedInNumber) {
  EXPECT_EQ(RowWorkers(1000000).count(), 64u);
  EXPECT_GE(RowWorkers(0).count(), 1u);
  EXPECT_GE(RowWorkers(-5).count(), 1u);
}

}  // namespace
}  // namespace zel::render

#include "platform/render/row_workers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <new>
#include <thread>

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

// The job is in the caller's frame, which nobody may leave before the workers have.
TEST(RowWorkersTest, ThrowWhatATaskOfTheCallersThrowsOnlyWhenNoTaskRunsAnyMore) {
  RowWorkers workers(4);
  const auto caller = std::this_thread::get_id();
  for (int job = 0; job < 200; ++job) {
    std::atomic<int> running{0};
    std::atomic<bool> callerCame{false};
    bool thrown = false;
    try {
      workers.run(64, [&](std::size_t, std::size_t) {
        if (std::this_thread::get_id() == caller) {
          callerCame = true;
          throw std::bad_alloc();
        }
        ++running;
        while (!callerCame) std::this_thread::yield();
        for (int turn = 0; turn < 20; ++turn) std::this_thread::yield();
        --running;
      });
    } catch (const std::bad_alloc&) {
      thrown = true;
    }
    EXPECT_TRUE(thrown);
    ASSERT_EQ(running, 0) << "job " << job;
  }
}

TEST(RowWorkersTest, ThrowWhatATaskOfAWorkerThrowsToTheCaller) {
  RowWorkers workers(3);
  const auto caller = std::this_thread::get_id();
  std::atomic<bool> workerCame{false};
  const auto failOnAWorker = [&] {
    workers.run(1000, [&](std::size_t, std::size_t) {
      if (std::this_thread::get_id() != caller) {
        workerCame = true;
        throw std::bad_alloc();
      }
      while (!workerCame) std::this_thread::yield();
    });
  };
  EXPECT_THROW(failOnAWorker(), std::bad_alloc);
}

TEST(RowWorkersTest, RunTheJobAfterOneThatFailed) {
  RowWorkers workers(3);
  EXPECT_THROW(workers.run(10, [](std::size_t, std::size_t) { throw std::bad_alloc(); }), std::bad_alloc);
  std::array<std::atomic<int>, 100> runs{};
  workers.run(runs.size(), [&](std::size_t task, std::size_t) { ++runs[task]; });
  for (const auto& count : runs) EXPECT_EQ(count, 1);
}

TEST(RowWorkersTest, AreBoundedInNumber) {
  EXPECT_EQ(RowWorkers(1000000).count(), 64u);
  EXPECT_GE(RowWorkers(0).count(), 1u);
  EXPECT_GE(RowWorkers(-5).count(), 1u);
}

}  // namespace
}  // namespace zel::render

#include "platform/linux/worker_pool.h"

#include <gtest/gtest.h>

#include <future>
#include <set>
#include <thread>

#include "tests/platform/linux/waiting.h"

namespace zel::platform {
namespace {

using test::Event;
using test::eventually;
using test::Recorded;
using test::threadCount;

TEST(WorkerPoolTest, TaskNeverWaitsBehindABlockedOne) {
  std::promise<void> release;
  const std::shared_future<void> released = release.get_future().share();
  Recorded<int> blocked;
  WorkerPool pool;
  for (int i = 0; i < 20; ++i) {
    pool.post([&blocked, released, i] {
      blocked.add(i);
      released.wait();
    });
  }
  EXPECT_EQ(blocked.wait(20).size(), 20U);
  Event ran;
  pool.post([&] { ran.set(); });
  EXPECT_TRUE(ran.wait());
  release.set_value();
}

TEST(WorkerPoolTest, IdleThreadIsUsedAgain) {
  WorkerPool pool(std::chrono::minutes(10));
  std::set<std::thread::id> threads;
  for (int round = 0; round < 50; ++round) {
    std::promise<std::thread::id> id;
    pool.post([&] { id.set_value(std::this_thread::get_id()); });
    threads.insert(id.get_future().get());
  }
  EXPECT_LT(threads.size(), 50U);
}

TEST(WorkerPoolTest, IdleThreadsRetire) {
  const std::size_t before = threadCount();
  WorkerPool pool(std::chrono::milliseconds(1));
  Event ran;
  pool.post([&] { ran.set(); });
  ASSERT_TRUE(ran.wait());
  EXPECT_TRUE(eventually([&] { return threadCount() <= before; }));
  Event again;
  pool.post([&] { again.set(); });
  EXPECT_TRUE(again.wait());
}

TEST(WorkerPoolTest, GoingDoesNotWaitForABlockedTaskAndEndsIdleThreads) {
  const std::size_t before = threadCount();
  const auto release = std::make_shared<Event>();
  {
    WorkerPool pool(std::chrono::minutes(10));
    Event begun;
    Event ran;
    pool.post([&begun, release] {
      begun.set();
      release->wait();
    });
    pool.post([&] { ran.set(); });
    ASSERT_TRUE(begun.wait());
    ASSERT_TRUE(ran.wait());
  }
  release->set();
  EXPECT_TRUE(eventually([&] { return threadCount() <= before; }));
}

TEST(WorkerPoolTest, TaskLetsGoOfWhatItHeld) {
  WorkerPool pool;
  auto held = std::make_shared<int>(0);
  const std::weak_ptr<int> watch = held;
  pool.post([kept = std::move(held)] {});
  EXPECT_TRUE(eventually([&] { return watch.expired(); }));
}

TEST(WorkerPoolTest, ProcessWithABlockedTaskStillExits) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        auto* pool = new WorkerPool;
        const auto begun = std::make_shared<Event>();
        pool->post([begun] {
          begun->set();
          std::this_thread::sleep_for(std::chrono::hours(24));
        });
        begun->wait();
        delete pool;
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace zel::platform

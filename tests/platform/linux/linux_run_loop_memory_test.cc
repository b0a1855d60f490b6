// What run loops and threads do where memory ends: each of their allocations fails, one a round. A program of its own,
// because that replaces the allocator.

#include <gtest/gtest.h>

#include <atomic>
#include <new>

#include "platform/linux/linux_run_loop.h"
#include "platform/linux/linux_threads.h"
#include "platform/linux/worker_pool.h"
#include "tests/allocation_fault.h"
#include "tests/platform/linux/waiting.h"

namespace zel::platform {
namespace {

using test::AllocationFault;
using test::FaultyCode;

// Runs the round with its first allocation failing, then with its second, until there are no more.
template <class Round>
int failEach(Round round) {
  int failed = 0;
  for (bool struck = true; struck; ++failed) {
    const AllocationFault fault(failed + 1);
    const FaultyCode test(false);
    round();
    struck = fault.hasStruck();
  }
  return failed - 1;
}

TEST(LinuxRunLoopMemoryTest, AThreadEndsWhicheverAllocationOfItsEndFails) {
  failEach([] {
    LinuxThreads threads(LinuxRunLoop::create());
    auto thread = threads.start("test", {});
    ASSERT_NE(thread, nullptr);
    const FaultyCode counted;
    thread.reset();
  });
}

TEST(LinuxRunLoopMemoryTest, ATaskThatWasTakenRunsWhicheverAllocationFails) {
  const int failed = failEach([] {
    LinuxThreads threads(LinuxRunLoop::create());
    const auto thread = threads.start("test", {});
    test::countOnOtherThreads(true);
    std::atomic<int> ran = 0;
    int taken = 0;
    for (int task = 0; task < 40; ++task) {
      const FaultyCode counted;
      try {
        thread->runLoop().perform([&ran] { ++ran; });
        ++taken;
      } catch (const std::bad_alloc&) {
        // It was not taken.
      }
    }
    EXPECT_TRUE(test::eventually([&] { return ran == taken; })) << ran << " of " << taken;
    test::countOnOtherThreads(false);
  });
  EXPECT_GT(failed, 0);
}

TEST(LinuxRunLoopMemoryTest, ASourceThatWasSignalledIsCalledWhicheverAllocationFails) {
  failEach([] {
    LinuxThreads threads(LinuxRunLoop::create());
    const auto thread = threads.start("test", {});
    std::atomic<int> calls = 0;
    const auto source = thread->runLoop().addSource([&calls] { ++calls; });
    ASSERT_TRUE(test::eventually([&] { return thread->runLoop().isWaiting(); }));
    {
      const FaultyCode counted;
      source->signal();
      thread->runLoop().wakeUp();
    }
    EXPECT_TRUE(test::eventually([&] { return calls == 1; }));
  });
}

TEST(LinuxRunLoopMemoryTest, ATimerEndsWhicheverAllocationOfItsEndFails) {
  failEach([] {
    LinuxThreads threads(LinuxRunLoop::create());
    const auto thread = threads.start("test", {});
    auto timer = thread->runLoop().scheduleRepeating(0.001, [] {});
    const FaultyCode counted;
    timer.reset();
  });
}

TEST(LinuxRunLoopMemoryTest, AWorkerPoolGoesWhicheverAllocationFails) {
  failEach([] {
    auto pool = std::make_unique<WorkerPool>();
    const FaultyCode counted;
    pool.reset();
  });
}

}  // namespace
}  // namespace zel::platform

#include "platform/linux/linux_threads.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <future>

#include "tests/platform/linux/waiting.h"

namespace zel::platform {
namespace {

using test::Event;
using test::eventually;
using test::Recorded;
using test::threadCount;
using ::testing::ElementsAre;

class LinuxThreadsTest : public ::testing::Test {
 protected:
  const std::shared_ptr<LinuxRunLoop> mainRunLoop_ = LinuxRunLoop::create();
  LinuxThreads threads_{mainRunLoop_};
};

TEST_F(LinuxThreadsTest, BeginsRunsAndEndsOnOneThread) {
  Recorded<std::string> steps;
  std::thread::id began, ran, ended;
  auto thread = threads_.start("session thread", {.begin =
                                                      [&](RunLoop& loop) {
                                                        began = std::this_thread::get_id();
                                                        steps.add("begin");
                                                        loop.perform([&] {
                                                          ran = std::this_thread::get_id();
                                                          steps.add("task");
                                                        });
                                                      },
                                                  .end =
                                                      [&] {
                                                        ended = std::this_thread::get_id();
                                                        steps.add("end");
                                                      }});
  steps.wait(2);
  thread.reset();
  EXPECT_THAT(steps.now(), ElementsAre("begin", "task", "end"));
  EXPECT_EQ(began, ran);
  EXPECT_EQ(began, ended);
  EXPECT_NE(began, std::this_thread::get_id());
}

TEST_F(LinuxThreadsTest, ThreadBearsTheFirst15CharactersOfItsName) {
  std::promise<std::string> name;
  const auto thread = threads_.start("0123456789ABCDEFGH", {.begin =
                                                                [&](RunLoop&) {
                                                                  char text[32] = {};
                                                                  pthread_getname_np(pthread_self(), text, sizeof text);
                                                                  name.set_value(text);
                                                                },
                                                            .end = {}});
  EXPECT_EQ(name.get_future().get(), "0123456789ABCDE");
}

TEST_F(LinuxThreadsTest, ThreadKeepsTheHostsSignalsOff) {
  std::promise<bool> masked;
  const auto thread = threads_.start(
      "masked", {.begin =
                     [&](RunLoop&) {
                       sigset_t set;
                       pthread_sigmask(SIG_SETMASK, nullptr, &set);
                       masked.set_value(sigismember(&set, SIGINT) == 1 && sigismember(&set, SIGSEGV) == 0);
                     },
                 .end = {}});
  EXPECT_TRUE(masked.get_future().get());
}

TEST_F(LinuxThreadsTest, CurrentRunLoopIsTheThreadsOwnElseTheMainOne) {
  std::promise<RunLoop*> inside;
  const auto thread =
      threads_.start("own", {.begin = [&](RunLoop&) { inside.set_value(&threads_.currentRunLoop()); }, .end = {}});
  EXPECT_EQ(inside.get_future().get(), &thread->runLoop());
  EXPECT_EQ(&threads_.currentRunLoop(), mainRunLoop_.get());
}

TEST_F(LinuxThreadsTest, KnowsItsOwnThread) {
  std::promise<bool> inside;
  const auto thread = threads_.start("own", {});
  thread->runLoop().perform([&] { inside.set_value(thread->isCurrent()); });
  EXPECT_TRUE(inside.get_future().get());
  EXPECT_FALSE(thread->isCurrent());
}

TEST_F(LinuxThreadsTest, HandleMayBeDestroyedInATaskOfItsThread) {
  Event ended;
  auto thread = threads_.start("self", {.begin = {}, .end = [&] { ended.set(); }});
  thread->runLoop().perform([&] { thread.reset(); });
  EXPECT_TRUE(ended.wait());
}

TEST_F(LinuxThreadsTest, HandleMayBeDestroyedInItsEnd) {
  Event ended;
  std::promise<void> assigned;
  std::unique_ptr<Thread> thread;
  thread = threads_.start("self", {.begin = [&](RunLoop& loop) { loop.stop(); },
                                   .end =
                                       [&] {
                                         assigned.get_future().wait();
                                         thread.reset();
                                         ended.set();
                                       }});
  assigned.set_value();
  EXPECT_TRUE(ended.wait());
}

TEST_F(LinuxThreadsTest, GoingWaitsForThreadsThatLostTheirHandle) {
  std::atomic<bool> ended = false;
  std::promise<void> release;
  {
    LinuxThreads threads(mainRunLoop_);
    Event begun;
    std::unique_ptr<Thread> thread;
    thread = threads.start("lost", {.begin = {}, .end = [&] {
                                      begun.set();
                                      release.get_future().wait();
                                      ended.store(true);
                                    }});
    thread->runLoop().perform([&] { thread.reset(); });
    ASSERT_TRUE(begun.wait());
    release.set_value();
  }
  EXPECT_TRUE(ended.load());
}

TEST_F(LinuxThreadsTest, NamesAThreadThatNobodyTellsToEnd) {
  EXPECT_EQ(threads_.waitForEnds(std::chrono::milliseconds(0)), "");
  const auto kept = threads_.start("kept", {});
  EXPECT_EQ(threads_.waitForEnds(std::chrono::milliseconds(0)), "kept");
}

TEST_F(LinuxThreadsTest, WaitsLongerForAThreadThatHasBeenToldToEnd) {
  Event inside, release;
  std::thread releasing;
  {
    const auto slow = threads_.start("slow", {.begin = {}, .end = [&] {
                                                inside.set();
                                                release.wait();
                                              }});
    slow->runLoop().stop();
    ASSERT_TRUE(inside.wait());
    releasing = std::thread([&] { release.set(); });
    EXPECT_EQ(threads_.waitForEnds(std::chrono::milliseconds(0)), "");
  }
  releasing.join();
}

TEST_F(LinuxThreadsTest, ThreadsThatLostTheirHandleLeaveNothingBehind) {
  const std::size_t before = threadCount();
  for (int round = 0; round < 100; ++round) {
    Event ended;
    auto thread = threads_.start("lost", {.begin = {}, .end = [&] { ended.set(); }});
    thread->runLoop().perform([&] { thread.reset(); });
    ASSERT_TRUE(ended.wait());
  }
  EXPECT_TRUE(eventually([&] { return threadCount() <= before; }));
}

TEST_F(LinuxThreadsTest, BodyIsReleasedWithTheThread) {
  const auto held = std::make_shared<int>(0);
  auto thread = threads_.start("body", {.begin = [held](RunLoop&) {}, .end = [held] {}});
  thread.reset();
  EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
}  // namespace zel::platform

#include "platform/linux/linux_run_loop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <future>
#include <thread>

#include "tests/platform/linux/waiting.h"

namespace zel::platform {
namespace {

using test::Event;
using test::eventually;
using test::Recorded;
using ::testing::ElementsAre;
using ::testing::SizeIs;

class LinuxRunLoopTest : public ::testing::Test {
 protected:
  ~LinuxRunLoopTest() override { end(); }

  void begin() {
    thread_ = std::thread([this] { loop_->run(); });
  }
  void end() {
    loop_->stop();
    if (thread_.joinable()) thread_.join();
  }
  // Waits until the loop has done what it was asked before.
  void settle() {
    Event done;
    loop_->perform([&] { done.set(); });
    ASSERT_TRUE(done.wait());
  }

  const std::shared_ptr<LinuxRunLoop> loop_ = LinuxRunLoop::create();
  std::thread thread_;
};

TEST_F(LinuxRunLoopTest, PerformsInTheOrderOfTheCallsOnItsThread) {
  Recorded<int> order;
  std::thread::id where;
  loop_->perform([&] { order.add(1); });
  loop_->perform([&] { order.add(2); });
  begin();
  loop_->perform([&] { where = std::this_thread::get_id(); });
  loop_->perform([&] { order.add(3); });
  EXPECT_THAT(order.wait(3), ElementsAre(1, 2, 3));
  EXPECT_EQ(where, thread_.get_id());
}

TEST_F(LinuxRunLoopTest, PerformNeverRunsInsideTheCall) {
  Recorded<int> order;
  begin();
  loop_->perform([&] {
    loop_->perform([&] { order.add(2); });
    order.add(1);
  });
  EXPECT_THAT(order.wait(2), ElementsAre(1, 2));
}

TEST_F(LinuxRunLoopTest, StopEndsAfterTheCallInProgressAndDropsTheRest) {
  bool ranAfterStop = false;
  bool finishedCall = false;
  const auto held = std::make_shared<int>(0);
  loop_->perform([&] {
    loop_->stop();
    finishedCall = true;
  });
  loop_->perform([&ranAfterStop, held] { ranAfterStop = true; });
  loop_->run();
  EXPECT_TRUE(finishedCall);
  EXPECT_FALSE(ranAfterStop);
  EXPECT_EQ(held.use_count(), 1) << "a dropped task lets go of what it holds";
}

TEST_F(LinuxRunLoopTest, PerformAfterStopDropsTheTaskAtOnce) {
  const auto held = std::make_shared<int>(0);
  loop_->stop();
  loop_->perform([held] { FAIL(); });
  EXPECT_EQ(held.use_count(), 1);
  loop_->run();
}

TEST_F(LinuxRunLoopTest, DroppedTaskMayUseTheLoopWhileItDies) {
  const std::shared_ptr<int> held(new int(0), [loop = loop_](int* number) {
    loop->perform([] { FAIL(); });
    delete number;
  });
  loop_->perform([this] { loop_->stop(); });
  loop_->perform([kept = held] { FAIL(); });
  loop_->run();
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(LinuxRunLoopTest, TaskLetsGoOfWhatItHoldsBeforeTheNextRuns) {
  auto held = std::make_shared<int>(0);
  const std::weak_ptr<int> watch = held;
  std::promise<bool> gone;
  loop_->perform([kept = std::move(held)] {});
  loop_->perform([&] { gone.set_value(watch.expired()); });
  begin();
  EXPECT_TRUE(gone.get_future().get());
}

TEST_F(LinuxRunLoopTest, TimerRepeatsAndFirstWaitsOnePeriod) {
  const auto start = std::chrono::steady_clock::now();
  Recorded<std::chrono::steady_clock::time_point> calls;
  const auto timer = loop_->scheduleRepeating(0.02, [&] { calls.add(std::chrono::steady_clock::now()); });
  begin();
  const auto times = calls.wait(3);
  ASSERT_GE(times.size(), 3U);
  EXPECT_GE(times[0] - start, std::chrono::milliseconds(19));
  EXPECT_GE(times[2] - start, std::chrono::milliseconds(59));
  end();
}

TEST_F(LinuxRunLoopTest, TimerSkipsThePeriodsThatItMissed) {
  Recorded<int> calls;
  const auto timer = loop_->scheduleRepeating(0.005, [&] {
    calls.add(0);
    if (calls.now().size() == 1) std::this_thread::sleep_for(std::chrono::milliseconds(100));
  });
  const auto start = std::chrono::steady_clock::now();
  begin();
  ASSERT_GE(calls.wait(3).size(), 3U);
  // The first call takes 20 periods; made up for, the third would follow at once, within one period of the first's end.
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(109));
  end();
}

TEST_F(LinuxRunLoopTest, DestroyedTimerNeitherRunsNorIsRunning) {
  std::atomic<bool> gone = false;
  std::atomic<bool> ranAfterwards = false;
  Event ran;
  auto timer = loop_->scheduleRepeating(0.0005, [&] {
    if (gone.load()) ranAfterwards.store(true);
    ran.set();
    std::this_thread::yield();
    if (gone.load()) ranAfterwards.store(true);
  });
  begin();
  ASSERT_TRUE(ran.wait());
  timer.reset();
  gone.store(true);
  settle();
  EXPECT_FALSE(ranAfterwards.load());
}

TEST_F(LinuxRunLoopTest, TimerMayBeDestroyedInsideItsOwnTask) {
  Event ended;
  auto held = std::make_shared<int>(0);
  const std::weak_ptr<int> watch = held;
  std::unique_ptr<Timer> timer;
  loop_->perform([&] {
    timer = loop_->scheduleRepeating(0.001, [&, kept = std::move(held)] {
      timer.reset();
      ended.set();
    });
  });
  begin();
  ASSERT_TRUE(ended.wait());
  settle();
  EXPECT_TRUE(watch.expired()) << "the task is released once its last call is over";
}

TEST_F(LinuxRunLoopTest, TimerAndSourceMayOutliveTheirLoop) {
  auto loop = LinuxRunLoop::create();
  auto timer = loop->scheduleRepeating(0.001, [] {});
  auto source = loop->addSource([] {});
  loop->stop();
  loop->run();
  loop.reset();
  source->signal();
  timer.reset();
  source.reset();
}

TEST_F(LinuxRunLoopTest, DestroyedTimerReleasesItsTaskThoughTheLoopHasEnded) {
  const auto held = std::make_shared<int>(0);
  auto timer = loop_->scheduleRepeating(1000, [held] {});
  begin();
  settle();
  end();
  timer.reset();
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(LinuxRunLoopTest, SignalsBeforeALookGiveOneCall) {
  Recorded<int> calls;
  const auto source = loop_->addSource([&] { calls.add(1); });
  for (int i = 0; i < 5; ++i) source->signal();
  begin();
  settle();
  EXPECT_THAT(calls.now(), SizeIs(1));
}

TEST_F(LinuxRunLoopTest, SourceSignalledByItsOwnCallIsCalledAgain) {
  Recorded<int> calls;
  std::unique_ptr<RunLoopSource> source;
  source = loop_->addSource([&] {
    calls.add(1);
    if (calls.now().size() < 3) source->signal();
  });
  source->signal();
  begin();
  EXPECT_THAT(calls.wait(3), SizeIs(3));
  end();
}

TEST_F(LinuxRunLoopTest, SignalAloneDoesNotEndTheSleepAndWakeUpDoes) {
  Event called;
  const auto source = loop_->addSource([&] { called.set(); });
  begin();
  ASSERT_TRUE(eventually([&] { return loop_->isWaiting(); }));
  source->signal();
  loop_->wakeUp();
  EXPECT_TRUE(called.wait());
}

// What lost wake-ups would show in: each round the loop is somewhere else on its way to sleep.
TEST_F(LinuxRunLoopTest, SignalWithAWakeUpOnlyWhenWaitingIsNeverLost) {
  std::atomic<int> calls = 0;
  const auto source = loop_->addSource([&] { calls.fetch_add(1); });
  begin();
  for (int round = 1; round <= 20000; ++round) {
    source->signal();
    if (loop_->isWaiting()) loop_->wakeUp();
    ASSERT_TRUE(eventually([&] { return calls.load() == round; })) << "lost in round " << round;
  }
}

TEST_F(LinuxRunLoopTest, DestroyedSourceIsNotCalledAnyMore) {
  bool called = false;
  auto source = loop_->addSource([&] { called = true; });
  source->signal();
  source.reset();
  begin();
  settle();
  end();
  EXPECT_FALSE(called);
}

TEST_F(LinuxRunLoopTest, IsNotWaitingWhileATaskRuns) {
  EXPECT_FALSE(loop_->isWaiting());
  std::promise<bool> waiting;
  begin();
  ASSERT_TRUE(eventually([&] { return loop_->isWaiting(); }));
  loop_->perform([&] { waiting.set_value(loop_->isWaiting()); });
  EXPECT_FALSE(waiting.get_future().get());
}

TEST_F(LinuxRunLoopTest, IdleLoopUsesNoProcessorTime) {
  begin();
  ASSERT_TRUE(eventually([&] { return loop_->isWaiting(); }));
  clockid_t clock = 0;
  ASSERT_EQ(pthread_getcpuclockid(thread_.native_handle(), &clock), 0);
  timespec before = {};
  timespec after = {};
  clock_gettime(clock, &before);
  std::this_thread::sleep_for(std::chrono::milliseconds(100));  // the time that must cost nothing
  clock_gettime(clock, &after);
  const auto spent = (after.tv_sec - before.tv_sec) * 1'000'000'000L + (after.tv_nsec - before.tv_nsec);
  EXPECT_LT(spent, 5'000'000) << "nanoseconds of 100 idle milliseconds";
}

TEST_F(LinuxRunLoopTest, RunForEndsByTimeOrByLeave) {
  EXPECT_FALSE(loop_->runFor(std::chrono::milliseconds(5)));
  loop_->perform([&] { loop_->leave(); });
  EXPECT_TRUE(loop_->runFor(test::kLimit));
}

TEST_F(LinuxRunLoopTest, LeaveKeepsTheRestForTheNextRun) {
  bool rest = false;
  loop_->perform([&] { loop_->leave(); });
  loop_->perform([&] {
    rest = true;
    loop_->leave();
  });
  loop_->run();
  EXPECT_FALSE(rest);
  loop_->run();
  EXPECT_TRUE(rest);
}

TEST_F(LinuxRunLoopTest, LeaveBeforeARunEndsItAtOnce) {
  loop_->leave();
  EXPECT_TRUE(loop_->runFor(test::kLimit));
}

TEST_F(LinuxRunLoopTest, DrainRunsWhatIsDueAndReturns) {
  int calls = 0;
  const auto source = loop_->addSource([&] { calls += 100; });
  loop_->perform([&] {
    ++calls;
    loop_->perform([&] { ++calls; });
    source->signal();
  });
  loop_->drain();
  EXPECT_EQ(calls, 102);
}

TEST_F(LinuxRunLoopTest, TaskThatQueuesItselfDoesNotHoldDrainForGood) {
  std::function<void()> again = [&] { loop_->perform(again); };
  again();
  loop_->drain();
  SUCCEED();
}

TEST_F(LinuxRunLoopTest, TaskMayRunTheLoopAgain) {
  bool inner = false;
  loop_->perform([&] {
    loop_->perform([&] {
      inner = true;
      loop_->leave();
    });
    EXPECT_TRUE(loop_->runFor(test::kLimit));
    loop_->leave();
  });
  loop_->run();
  EXPECT_TRUE(inner);
}

TEST_F(LinuxRunLoopTest, ExecutorMakesEveryCallOfTheLoop) {
  Recorded<std::function<void()>> handed;
  loop_->setExecutor([&](std::function<void()> call) { handed.add(std::move(call)); });
  Recorded<int> calls;
  begin();
  loop_->perform([&] { calls.add(1); });
  auto timer = loop_->scheduleRepeating(0.001, [&] { calls.add(2); });
  for (std::size_t next = 0; calls.now().size() < 3 && next < 10; ++next) {
    const auto waiting = handed.wait(next + 1);
    ASSERT_GT(waiting.size(), next);
    waiting[next]();
  }
  EXPECT_THAT(calls.now(), ElementsAre(1, 2, 2));
}

TEST_F(LinuxRunLoopTest, ExecutorRunsSignalledSources) {
  std::vector<std::function<void()>> handed;
  loop_->setExecutor([&](std::function<void()> call) { handed.push_back(std::move(call)); });
  int calls = 0;
  const auto source = loop_->addSource([&] { ++calls; });
  source->signal();
  if (loop_->isWaiting()) loop_->wakeUp();
  ASSERT_THAT(handed, SizeIs(1));
  handed[0]();
  EXPECT_EQ(calls, 1);
}

// As what an unanswered request holds may do, when the platform goes with the request still on its main queue.
struct CallsItsLoopWhenDestroyed {
  explicit CallsItsLoopWhenDestroyed(LinuxRunLoop& called) : loop(called) {}
  ~CallsItsLoopWhenDestroyed() {
    loop.perform([] {});
    loop.wakeUp();
    loop.stop();
  }
  LinuxRunLoop& loop;
};

TEST(LinuxRunLoopDestructionTest, ATaskThatIsDestroyedWithTheLoopMayCallIt) {
  auto loop = LinuxRunLoop::create();
  auto held = std::make_shared<CallsItsLoopWhenDestroyed>(*loop);
  const std::weak_ptr<CallsItsLoopWhenDestroyed> watched = held;
  bool hasRun = false;
  loop->perform([last = std::move(held), &hasRun] { hasRun = true; });
  loop.reset();
  EXPECT_TRUE(watched.expired());
  EXPECT_FALSE(hasRun);
}

}  // namespace
}  // namespace zel::platform

#include <gmock/gmock.h>

#include <atomic>

#include "tests/platform/harness.h"

namespace zel::test {
namespace {

using testing::ElementsAre;

class RunLoopConformance : public Conformance {
 protected:
  std::unique_ptr<platform::Thread> thread = startThread();
  platform::RunLoop& loop = thread->runLoop();
  Log<int> ran;
};

TEST_P(RunLoopConformance, PerformsInTheOrderOfTheCalls) {
  for (int i = 1; i <= 5; ++i) loop.perform([&, i] { ran.add(i); });
  ASSERT_TRUE(runUntil([&] { return ran.size() == 5; }));
  EXPECT_THAT(ran.all(), ElementsAre(1, 2, 3, 4, 5));
}

TEST_P(RunLoopConformance, PerformsLaterWhatIsAskedForFromInside) {
  inside(loop, [&] {
    loop.perform([&] { ran.add(2); });
    ran.add(1);
  });
  ASSERT_TRUE(runUntil([&] { return ran.size() == 2; }));
  EXPECT_THAT(ran.all(), ElementsAre(1, 2));
}

TEST_P(RunLoopConformance, PerformsWhatAnotherThreadAsksFor) {
  const auto other = startThread("other");
  other->runLoop().perform([&] { loop.perform([&] { ran.add(thread->isCurrent() ? 1 : 0); }); });
  ASSERT_TRUE(runUntil([&] { return ran.size() == 1; }));
  EXPECT_THAT(ran.all(), ElementsAre(1));
}

TEST_P(RunLoopConformance, DropsWhatIsQueuedWhenItIsStopped) {
  const auto witness = std::make_shared<int>(0);
  const std::weak_ptr<int> watched = witness;
  loop.perform([&, kept = witness] {
    loop.perform([&, kept] { ran.add(1); });
    loop.stop();
    loop.perform([&, kept] { ran.add(2); });
  });
  ASSERT_TRUE(runUntil([&] { return watched.use_count() == 1; }));
  thread.reset();
  EXPECT_EQ(ran.size(), 0U);
}

TEST_P(RunLoopConformance, RepeatsATimerNoFasterThanItsPeriod) {
  const double start = ports.clock.absoluteTime();
  Log<double> times;
  const auto timer = loop.scheduleRepeating(0.02, [&] { times.add(ports.clock.absoluteTime() - start); });
  ASSERT_TRUE(runUntil([&] { return times.size() >= 3; }));
  EXPECT_GE(times.all()[0], 0.0199);
  EXPECT_GE(times.all()[2], 0.0599);
}

TEST_P(RunLoopConformance, RunsTimersOnItsOwnThread) {
  const auto timer = loop.scheduleRepeating(0.005, [&] { ran.add(thread->isCurrent() ? 1 : 0); });
  ASSERT_TRUE(runUntil([&] { return ran.size() >= 1; }));
  EXPECT_EQ(ran.all()[0], 1);
}

TEST_P(RunLoopConformance, LetsATimerBeDestroyedInsideItsOwnTask) {
  std::unique_ptr<platform::Timer> timer;
  const auto captured = std::make_shared<int>(7);
  inside(loop, [&] {
    timer = loop.scheduleRepeating(0.005, [this, &timer, captured] {
      timer.reset();
      ran.add(*captured);
    });
  });
  const auto later = loop.scheduleRepeating(0.05, [&] { ran.add(1); });
  ASSERT_TRUE(runUntil([&] { return ran.size() >= 2; }));
  EXPECT_EQ(ran.all()[0], 7);
  EXPECT_EQ(ran.all()[1], 1);
}

TEST_P(RunLoopConformance, NeverRunsATimerAfterItsDestruction) {
  std::atomic<bool> destroyed = false;
  std::atomic<bool> ranLate = false;
  auto timer = loop.scheduleRepeating(0.001, [&] {
    ran.add(1);
    ranLate = ranLate || destroyed;
  });
  ASSERT_TRUE(runUntil([&] { return ran.size() >= 2; }));
  timer.reset();
  destroyed = true;
  const double until = ports.clock.absoluteTime() + 0.01;
  ASSERT_TRUE(runUntil([&] { return ports.clock.absoluteTime() > until; }));
  flush(loop);
  EXPECT_FALSE(ranLate);
}

TEST_P(RunLoopConformance, DoesNotMakeUpForMissedPeriods) {
  const auto timer = loop.scheduleRepeating(0.01, [&] { ran.add(1); });
  std::atomic<std::size_t> afterSleep = 0;
  inside(loop, [&] { ports.clock.sleepFor(1.0); });
  inside(loop, [&] { afterSleep = ran.size(); });
  EXPECT_LT(afterSleep, 20U);
}

TEST_P(RunLoopConformance, CallsASourceOnceForSignalsBeforeItLooks) {
  const auto source = loop.addSource([&] { ran.add(1); });
  inside(loop, [&] {
    for (int i = 0; i < 100; ++i) source->signal();
  });
  loop.wakeUp();
  ASSERT_TRUE(runUntil([&] { return ran.size() >= 1; }));
  flush(loop);
  EXPECT_EQ(ran.size(), 1U);
}

TEST_P(RunLoopConformance, CallsASourceThatSignalsItselfAgain) {
  std::unique_ptr<platform::RunLoopSource> source;
  inside(loop, [&] {
    source = loop.addSource([&] {
      ran.add(1);
      if (ran.size() < 3) source->signal();
    });
    source->signal();
  });
  EXPECT_TRUE(runUntil([&] { return ran.size() == 3; }));
}

TEST_P(RunLoopConformance, KeepsSourcesApart) {
  const auto one = loop.addSource([&] { ran.add(1); });
  const auto other = loop.addSource([&] { ran.add(2); });
  other->signal();
  loop.wakeUp();
  ASSERT_TRUE(runUntil([&] { return ran.size() >= 1; }));
  flush(loop);
  EXPECT_THAT(ran.all(), ElementsAre(2));
}

TEST_P(RunLoopConformance, ForgetsTheSignalOfADestroyedSource) {
  auto source = loop.addSource([&] { ran.add(1); });
  inside(loop, [&] {
    source->signal();
    source.reset();
  });
  flush(loop);
  EXPECT_EQ(ran.size(), 0U);
}

TEST_P(RunLoopConformance, LetsASourceBeDestroyedInsideItsOwnTask) {
  std::unique_ptr<platform::RunLoopSource> source;
  const auto captured = std::make_shared<int>(7);
  source = loop.addSource([this, &source, captured] {
    source.reset();
    ran.add(*captured);
  });
  inside(loop, [&] { source->signal(); });
  ASSERT_TRUE(runUntil([&] { return ran.size() == 1; }));
  EXPECT_THAT(ran.all(), ElementsAre(7));
}

TEST_P(RunLoopConformance, WaitsWhenItHasNothingToDoAndNotInsideACall) {
  std::atomic<bool> waitingInside = true;
  inside(loop, [&] { waitingInside = loop.isWaiting(); });
  EXPECT_FALSE(waitingInside);
  EXPECT_TRUE(runUntil([&] { return loop.isWaiting(); }));
}

// The producer's idiom: wake the loop only when it sleeps. A signal lost between the two would never be seen.
TEST_P(RunLoopConformance, LosesNoSignalWhenOnlyASleepingLoopIsWoken) {
  constexpr int kRounds = 2000;
  std::atomic<int> produced = 0;
  std::atomic<int> consumed = 0;
  const auto source = loop.addSource([&] { consumed = produced.load(); });
  const auto producer = startThread("producer");
  for (int round = 1; round <= kRounds; ++round) {
    producer->runLoop().perform([&, round] {
      produced = round;
      source->signal();
      if (loop.isWaiting()) loop.wakeUp();
    });
    if (round % 100 == 0) {
      ASSERT_TRUE(runUntil([&] { return consumed == round; })) << "signal " << round << " was lost";
    }
  }
}

TEST_P(RunLoopConformance, IgnoresAWakeUpWithoutWork) {
  loop.wakeUp();
  loop.wakeUp();
  inside(loop, [&] { ran.add(1); });
  EXPECT_EQ(ran.size(), 1U);
}

ZEL_CONFORMANCE_SUITE(RunLoopConformance);

}  // namespace
}  // namespace zel::test

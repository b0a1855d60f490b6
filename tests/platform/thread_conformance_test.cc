#include <gmock/gmock.h>

#include "tests/platform/harness.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using ThreadConformance = Conformance;
using Words = Log<std::string>;

platform::ThreadBody recordingBody(Words& words) {
  return {[&words](platform::RunLoop&) { words.add("begin"); }, [&words] { words.add("end"); }};
}

TEST_P(ThreadConformance, BeginsThenRunsItsLoopThenEnds) {
  Words words;
  const auto thread = ports.threads.start("worker", recordingBody(words));
  thread->runLoop().perform([&] { words.add("task"); });
  thread->runLoop().perform([&] { thread->runLoop().stop(); });
  ASSERT_TRUE(runUntil([&] { return words.size() == 3; }));
  EXPECT_THAT(words.all(), ElementsAre("begin", "task", "end"));
}

TEST_P(ThreadConformance, EndsOnceHoweverOftenItIsStopped) {
  Words words;
  auto thread = ports.threads.start("worker", recordingBody(words));
  thread->runLoop().perform([&] {
    thread->runLoop().stop();
    thread->runLoop().stop();
  });
  ASSERT_TRUE(runUntil([&] { return words.size() == 2; }));
  thread.reset();
  EXPECT_THAT(words.all(), ElementsAre("begin", "end"));
}

TEST_P(ThreadConformance, HasEndedWhenItsHandleIsDestroyed) {
  Words words;
  ports.threads.start("worker", recordingBody(words)).reset();
  EXPECT_THAT(words.all(), ElementsAre("begin", "end"));
}

TEST_P(ThreadConformance, EndsALoopThatIsStoppedWhileItBegins) {
  Words words;
  const auto thread = ports.threads.start("worker", {[&](platform::RunLoop& loop) {
                                                       loop.stop();
                                                       loop.perform([&] { words.add("dropped"); });
                                                     },
                                                     [&] { words.add("end"); }});
  ASSERT_TRUE(runUntil([&] { return words.size() == 1; }));
  EXPECT_THAT(words.all(), ElementsAre("end"));
}

TEST_P(ThreadConformance, DoesNotWaitForItselfWhenItsHandleIsDestroyedOnIt) {
  Words words;
  std::unique_ptr<platform::Thread> thread = ports.threads.start("worker", recordingBody(words));
  thread->runLoop().perform([&] {
    thread.reset();
    words.add("destroyed");
  });
  ASSERT_TRUE(runUntil([&] { return words.size() == 3; }));
  EXPECT_THAT(words.all(), ElementsAre("begin", "destroyed", "end"));
}

TEST_P(ThreadConformance, IsCurrentOnlyInsideItsOwnCalls) {
  Log<bool> current;
  const auto one = startThread("one");
  const auto other = startThread("other");
  inside(one->runLoop(), [&] {
    current.add(one->isCurrent());
    current.add(other->isCurrent());
  });
  EXPECT_THAT(current.all(), ElementsAre(true, false));
  EXPECT_FALSE(one->isCurrent());
}

TEST_P(ThreadConformance, GivesEachThreadItsOwnCurrentRunLoop) {
  Log<platform::RunLoop*> loops;
  const auto thread = ports.threads.start("worker", {[&](platform::RunLoop& loop) { loops.add(&loop); }, {}});
  inside(thread->runLoop(), [&] { loops.add(&ports.threads.currentRunLoop()); });
  EXPECT_THAT(loops.all(), ElementsAre(&thread->runLoop(), &thread->runLoop()));
  EXPECT_NE(&ports.threads.currentRunLoop(), &thread->runLoop());
}

ZEL_CONFORMANCE_SUITE(ThreadConformance);

}  // namespace
}  // namespace zel::test

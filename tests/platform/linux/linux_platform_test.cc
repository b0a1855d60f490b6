#include <ZELTarkaSDK/LinuxPlatform.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <ctime>
#include <deque>
#include <mutex>
#include <thread>

#include "tests/platform/linux/bus_fixture.h"

namespace zel {
namespace {

using platform::Queue;
using platform::RunLoop;
using test::Event;
using test::Recorded;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

using LinuxPlatformTest = test::BusFixture;

TEST_F(LinuxPlatformTest, ClockCountsSecondsSince2001) {
  const double time = ports().clock.absoluteTime();
  EXPECT_NEAR(time, static_cast<double>(std::time(nullptr)) - 978307200.0, 2.0);
}

TEST_F(LinuxPlatformTest, ClockSleepsNotForZeroOrLess) {
  ports().clock.sleepFor(0);
  ports().clock.sleepFor(-5);
  const double start = ports().clock.absoluteTime();
  ports().clock.sleepFor(0.01);
  EXPECT_GE(ports().clock.absoluteTime() - start, 0.009);
}

TEST_F(LinuxPlatformTest, ClockIsThereWithoutAPlatform) { EXPECT_EQ(&LinuxPlatform::systemClock(), &ports().clock); }

TEST_F(LinuxPlatformTest, KeepsDocumentsWhereTheHostWantsThem) {
  std::string error;
  LinuxPlatform::Options options;
  options.accessoriesFolder = folder_.path();
  options.documentsFolder = folder_.file("documents");
  const auto platform = LinuxPlatform::create(options, error);
  ASSERT_NE(platform, nullptr) << error;
  EXPECT_EQ(platform->ports().documents->folder(), folder_.file("documents"));
}

TEST_F(LinuxPlatformTest, FolderThatCannotBeTrustedGivesNoPlatform) {
  chmod(folder_.path().c_str(), 0777);
  std::string error;
  LinuxPlatform::Options options;
  options.accessoriesFolder = folder_.path();
  EXPECT_EQ(LinuxPlatform::create(options, error), nullptr);
  EXPECT_THAT(error, HasSubstr("can be written by others; run: chmod go-w"));
}

TEST_F(LinuxPlatformTest, MainQueueRunsOnTheThreadThatRunsItUntilItIsStopped) {
  Recorded<int> order;
  std::thread::id where;
  std::thread other([&] {
    ports().queues.mainQueue().post([&] { order.add(1); });
    ports().threads.currentRunLoop().perform([&] { order.add(2); });
    ports().queues.mainQueue().post([&] {
      where = std::this_thread::get_id();
      platform_->stopMainQueue();
    });
  });
  platform_->runMainQueue();
  other.join();
  EXPECT_THAT(order.now(), ElementsAre(1, 2));
  EXPECT_EQ(where, std::this_thread::get_id());
}

TEST_F(LinuxPlatformTest, RunForTellsWhetherTheTimeEndedIt) {
  EXPECT_FALSE(platform_->runMainQueueFor(0.001));
  ports().queues.mainQueue().post([&] { platform_->stopMainQueue(); });
  EXPECT_TRUE(platform_->runMainQueueFor(30));
}

TEST_F(LinuxPlatformTest, DrainRunsWhatIsDue) {
  bool ran = false;
  ports().queues.mainQueue().post([&] { ran = true; });
  platform_->drainMainQueue();
  EXPECT_TRUE(ran);
  platform_->drainMainQueue();
}

TEST_F(LinuxPlatformTest, GlobalQueueRunsElsewhere) {
  Event ran;
  std::thread::id where;
  ports().queues.globalQueue().post([&] {
    where = std::this_thread::get_id();
    ran.set();
  });
  ASSERT_TRUE(ran.wait());
  EXPECT_NE(where, std::this_thread::get_id());
}

TEST_F(LinuxPlatformTest, GoingReleasesWhatTheMainQueueHeld) {
  const auto held = std::make_shared<int>(0);
  ports().queues.mainQueue().post([held] {});
  ports().queues.mainQueue().post([this, held] { ports().queues.mainQueue().post([held] {}); });
  platform_.reset();
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(LinuxPlatformTest, PlatformMayGoWhileItIsRegistered) {
  manager().registerForLocalNotifications();
  settle();
  plug("a", 1);
  platform_.reset();
  EXPECT_THAT(heard_, ElementsAre());
}

TEST_F(LinuxPlatformTest, TwoHundredPlatformsLeaveNoDescriptorAndNoThread) {
  const std::size_t descriptors = test::descriptorCount();
  const std::size_t threads = test::threadCount();
  for (int round = 0; round < 200; ++round) {
    std::string error;
    LinuxPlatform::Options options;
    options.accessoriesFolder = folder_.path();
    const auto other = LinuxPlatform::create(options, error);
    Event ran;
    other->ports().queues.globalQueue().post([&] { ran.set(); });
    other->ports().accessories.registerForLocalNotifications();
    other->drainMainQueue();
    ASSERT_TRUE(ran.wait());
  }
  EXPECT_EQ(test::descriptorCount(), descriptors);
  EXPECT_TRUE(test::eventually([&] { return test::threadCount() <= threads; }));
}

// A host with a main loop of its own: it runs what the executor was given, in order.
class LinuxPlatformExecutorTest : public test::BusFixture {
 protected:
  LinuxPlatformExecutorTest() {
    platform_->setMainQueueExecutor([this](std::function<void()> task) { handed_.add(std::move(task)); });
  }
  ~LinuxPlatformExecutorTest() override { platform_.reset(); }

  bool runHostUntil(const std::function<bool()>& condition) {
    while (!condition()) {
      const auto tasks = handed_.wait(next_ + 1);
      if (tasks.size() <= next_) return false;
      tasks[next_++]();
    }
    return true;
  }

  Recorded<std::function<void()>> handed_;
  std::size_t next_ = 0;
};

TEST_F(LinuxPlatformExecutorTest, TasksOfTheQueueAndOfTheRunLoopKeepTheirOrder) {
  std::vector<int> order;
  ports().queues.mainQueue().post([&] { order.push_back(1); });
  ports().threads.currentRunLoop().perform([&] { order.push_back(2); });
  ports().queues.mainQueue().post([&] { order.push_back(3); });
  EXPECT_THAT(order, ElementsAre());
  EXPECT_TRUE(runHostUntil([&] { return order.size() == 3; }));
  EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST_F(LinuxPlatformExecutorTest, TimersOfTheMainRunLoopRunOnTheHostsThread) {
  std::vector<std::thread::id> calls;
  const auto timer =
      ports().threads.currentRunLoop().scheduleRepeating(0.001, [&] { calls.push_back(std::this_thread::get_id()); });
  EXPECT_TRUE(runHostUntil([&] { return calls.size() == 2; }));
  EXPECT_THAT(calls, ElementsAre(std::this_thread::get_id(), std::this_thread::get_id()));
}

TEST_F(LinuxPlatformExecutorTest, AccessoriesAreAnnouncedOnTheHostsThread) {
  std::thread::id where;
  onHeard_ = [&] { where = std::this_thread::get_id(); };
  manager().registerForLocalNotifications();
  plug("a", 1);
  EXPECT_TRUE(runHostUntil([&] { return !heard_.empty(); }));
  EXPECT_THAT(heard_, ElementsAre("+1"));
  EXPECT_EQ(where, std::this_thread::get_id());
}

TEST_F(LinuxPlatformExecutorTest, TaskThatTheHostRunsTooLateDoesNothing) {
  bool ran = false;
  ports().queues.mainQueue().post([&] { ran = true; });
  platform_.reset();
  for (const auto& task : handed_.now()) task();
  EXPECT_FALSE(ran);
}

}  // namespace
}  // namespace zel

// What is left where the process has no descriptor more.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <string>

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/LinuxPlatform.h>

#include "platform/linux/unique_descriptor.h"
#include "tests/platform/linux/bus_fixture.h"
#include "tests/sanitizers.h"

namespace zel::test {
namespace {

std::atomic<bool> hasNotifications = true;

}  // namespace
}  // namespace zel::test

// The system's own, but where a test has used them up.
extern "C" int inotify_init1(int flags) noexcept {
  if (zel::test::hasNotifications) return static_cast<int>(syscall(SYS_inotify_init1, flags));
  errno = EMFILE;
  return -1;
}

namespace zel::test {
namespace {

// Lets the process open no further descriptor.
class NoDescriptors {
 public:
  NoDescriptors() {
    getrlimit(RLIMIT_NOFILE, &before_);
    const platform::UniqueDescriptor next(dup(0));
    rlimit none = before_;
    none.rlim_cur = static_cast<rlim_t>(next.get());
    setrlimit(RLIMIT_NOFILE, &none);
  }
  ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &before_); }
  NoDescriptors(const NoDescriptors&) = delete;
  NoDescriptors& operator=(const NoDescriptors&) = delete;

 private:
  rlimit before_{};
};

class ShortageTest : public BusFixture {
 protected:
  // UBSan looks at an object's type through a pipe of its own, and takes a pipe that it cannot have for a broken
  // object.
  void SetUp() override {
    if (kKeepsFreedMemory && !kThreadSanitized) GTEST_SKIP() << "the sanitizer needs descriptors itself";
  }
};

TEST_F(ShortageTest, NoThreadIsMadeWithoutDescriptors) {
  {
    const NoDescriptors none;
    EXPECT_EQ(ports().threads.start("late", {}), nullptr);
  }
  EXPECT_NE(ports().threads.start("in time", {}), nullptr);
}

TEST_F(ShortageTest, APlatformThatHasNoDescriptorSaysSo) {
  const NoDescriptors none;
  std::string error;
  EXPECT_EQ(LinuxPlatform::create({.accessoriesFolder = folder_.path()}, error), nullptr);
  EXPECT_EQ(error.rfind("the main run loop cannot be made: ", 0), 0u) << error;
}

// The platform's destructor waits for this thread, which nobody ends.
TEST(LinuxPlatformDeathTest, NamesTheThreadThatIsLeftBehind) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  TemporaryFolder folder;
  EXPECT_DEATH(
      {
        std::string error;
        auto platform = LinuxPlatform::create({.accessoriesFolder = folder.path()}, error);
        const auto thread = platform->ports().threads.start("session thread", {});
        platform = nullptr;
      },
      "the LinuxPlatform is destroyed while its thread \"session thread\" runs; destroy every CameraStack");
}

// Each user has a limited number of notifications, which other programs may have used up.
class NotificationShortageTest : public BusFixture {};

TEST_F(NotificationShortageTest, PluggingIsNoticedWithoutNotificationsOfTheFolder) {
  hasNotifications = false;
  ports().accessories.registerForLocalNotifications();
  hasNotifications = true;
  EXPECT_THAT(warnings_.now(), testing::IsEmpty());
  plug("a", 1);
  EXPECT_THAT(heardAtLeast(1), testing::ElementsAre("+1"));
  unplug("a");
  EXPECT_THAT(heardAtLeast(2), testing::ElementsAre("+1", "-1"));
  ports().accessories.unregisterForLocalNotifications();
  plug("b", 2);
  platform_->runMainQueueFor(1.1);
  EXPECT_THAT(heardAtLeast(0), testing::ElementsAre("+1", "-1")) << "nobody asks any more";
}

}  // namespace
}  // namespace zel::test

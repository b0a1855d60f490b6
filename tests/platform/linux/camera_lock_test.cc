#include "platform/linux/camera_lock.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "tests/platform/linux/temporary_folder.h"

namespace zel::platform {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

class CameraLockTest : public ::testing::Test {
 protected:
  CameraLockTest() { fs::create_directory(bus()); }

  std::string bus() const { return folder_.file("bus"); }
  CameraLock::Taken take(const std::string& camera = "E1A0001") const {
    return CameraLock::take(bus(), camera, "host one");
  }

  test::TemporaryFolder folder_;
};

TEST_F(CameraLockTest, TheSecondIsToldTheFirstOnesProcessAndProgram) {
  const auto first = take();
  ASSERT_NE(first.lock, nullptr) << first.fault;
  const auto second = take();
  EXPECT_EQ(second.lock, nullptr);
  ASSERT_TRUE(second.user.has_value());
  EXPECT_EQ(second.user->process, ::getpid());
  EXPECT_EQ(second.user->program, "host one");
}

TEST_F(CameraLockTest, EachCameraHasItsOwn) {
  const auto one = take("ONE"), two = take("TWO");
  EXPECT_NE(one.lock, nullptr);
  EXPECT_NE(two.lock, nullptr);
}

TEST_F(CameraLockTest, NothingIsLeftWhenTheLastHasGone) {
  auto one = take("ONE"), two = take("TWO");
  EXPECT_TRUE(fs::exists(folder_.file("bus.locks/ONE.lock")));
  one.lock.reset();
  EXPECT_FALSE(fs::exists(folder_.file("bus.locks/ONE.lock")));
  two.lock.reset();
  EXPECT_FALSE(fs::exists(folder_.file("bus.locks")));
  EXPECT_NE(take("ONE").lock, nullptr);
}

TEST_F(CameraLockTest, FileThatAKilledProcessLeftIsNobodys) {
  fs::create_directory(folder_.file("bus.locks"));
  folder_.write("bus.locks/E1A0001.lock", "1 killed long ago, and its name is longer than the next one's\n");
  const auto taken = take();
  ASSERT_NE(taken.lock, nullptr) << taken.fault;
  EXPECT_EQ(take().user->program, "host one");
}

TEST_F(CameraLockTest, EndsWithItsProcess) {
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const auto taken = take();
    (void)!::write(ready[1], taken.lock ? "y" : "n", 1);
    ::pause();
  }
  char answer = 'n';
  ASSERT_EQ(::read(ready[0], &answer, 1), 1);
  EXPECT_EQ(answer, 'y');
  EXPECT_EQ(take().user.value_or(CameraUser()).process, child);
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_NE(take().lock, nullptr);
}

TEST_F(CameraLockTest, ABusIsTheSameByWhateverPath) {
  fs::create_directory_symlink(bus(), folder_.file("link"));
  const auto first = take();
  for (const std::string& path : {bus() + "/", folder_.file("link"), folder_.file("./bus/../link/")}) {
    EXPECT_EQ(CameraLock::take(path, "E1A0001", "host two").lock, nullptr) << path;
  }
}

TEST_F(CameraLockTest, IsKeptInsideTheBusWhereNothingCanBeMadeBesideIt) {
  folder_.write("bus.locks", "a file of somebody's");
  const auto first = take();
  ASSERT_NE(first.lock, nullptr) << first.fault;
  EXPECT_TRUE(fs::exists(bus() + "/.locks/E1A0001.lock"));
  EXPECT_EQ(take().lock, nullptr);
}

TEST_F(CameraLockTest, FolderThatOthersCanWriteIsNotTrusted) {
  fs::create_directory(folder_.file("bus.locks"));
  ::chmod(folder_.file("bus.locks").c_str(), 0777);
  const auto taken = take();
  EXPECT_TRUE(fs::exists(bus() + "/.locks/E1A0001.lock"));
  EXPECT_FALSE(fs::exists(folder_.file("bus.locks/E1A0001.lock")));
}

TEST_F(CameraLockTest, WithoutAnyPlaceItSaysWhy) {
  folder_.write("bus.locks", "");
  folder_.write("bus/.locks", "");
  const auto taken = take();
  EXPECT_EQ(taken.lock, nullptr);
  EXPECT_FALSE(taken.user.has_value());
  EXPECT_THAT(taken.fault, HasSubstr("bus/.locks: "));
}

TEST_F(CameraLockTest, SymbolicLinkIsNotFollowed) {
  folder_.write("precious", "text");
  fs::create_directory(folder_.file("bus.locks"));
  fs::create_symlink(folder_.file("precious"), folder_.file("bus.locks/E1A0001.lock"));
  EXPECT_EQ(take().lock, nullptr);
  EXPECT_EQ(fs::file_size(folder_.file("precious")), 4u);
}

TEST_F(CameraLockTest, HolderThatTellsNothingIsStillOne) {
  const auto first = take();
  ASSERT_EQ(::truncate(folder_.file("bus.locks/E1A0001.lock").c_str(), 0), 0);
  const auto second = take();
  ASSERT_TRUE(second.user.has_value());
  EXPECT_EQ(second.user->process, 0);
}

TEST(LockFileName, EncodesWhatNoFilesNameHolds) {
  EXPECT_EQ(lockFileName("E1A0001"), "E1A0001.lock");
  EXPECT_EQ(lockFileName("a-b_c.d~"), "a-b_c.d~.lock");
  EXPECT_EQ(lockFileName("../x y%\n\xC3\xA9"), "..%2Fx%20y%25%0A%C3%A9.lock");
}

TEST(LockFileName, ShortensWhatIsTooLongAndKeepsItApart) {
  const std::string one = lockFileName(std::string(200, 'a') + "1"), two = lockFileName(std::string(200, 'a') + "2");
  EXPECT_EQ(lockFileName(std::string(200, 'a')), std::string(200, 'a') + ".lock");
  EXPECT_EQ(one.size(), 200 + 1 + 16 + 5u);
  EXPECT_NE(one, two);
}

}  // namespace
}  // namespace zel::platform

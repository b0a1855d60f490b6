#include "platform/linux/accessory_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "tests/platform/linux/temporary_folder.h"

namespace zel::platform {
namespace {

using test::TemporaryFolder;
using ::testing::HasSubstr;

class AccessoryFolderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    unsetenv("ZEL_ACCESSORIES");
    unsetenv("XDG_RUNTIME_DIR");
  }
  void TearDown() override { SetUp(); }

  static unsigned modeOf(const std::string& path) {
    struct stat known = {};
    return stat(path.c_str(), &known) == 0 ? known.st_mode & 07777U : 0U;
  }

  TemporaryFolder temporary_;
  std::string error_;
};

TEST_F(AccessoryFolderTest, ChosenFolderWinsOverEveryVariable) {
  setenv("ZEL_ACCESSORIES", "/named", 1);
  setenv("XDG_RUNTIME_DIR", "/run/user/7", 1);
  EXPECT_EQ(accessoryFolderPath("/chosen"), "/chosen");
  EXPECT_EQ(accessoryFolderPath(""), "/named");
}

TEST_F(AccessoryFolderTest, RuntimeFolderIsUsedWithoutAName) {
  setenv("ZEL_ACCESSORIES", "", 1);
  setenv("XDG_RUNTIME_DIR", "/run/user/7", 1);
  EXPECT_EQ(accessoryFolderPath(""), "/run/user/7/zel/accessories");
}

TEST_F(AccessoryFolderTest, RelativeRuntimeFolderCountsAsUnset) {
  setenv("XDG_RUNTIME_DIR", "run", 1);
  EXPECT_EQ(accessoryFolderPath(""), "/tmp/zel-accessories-" + std::to_string(geteuid()));
}

TEST_F(AccessoryFolderTest, MissingFolderIsMadeForTheOwnerAlone) {
  const std::string path = temporary_.path() + "/zel/accessories";
  ASSERT_TRUE(prepareAccessoryFolder(path, error_)) << error_;
  EXPECT_EQ(modeOf(path), 0700U);
  EXPECT_EQ(modeOf(temporary_.path() + "/zel"), 0700U);
  EXPECT_TRUE(prepareAccessoryFolder(path, error_)) << "the second time it is there already";
}

TEST_F(AccessoryFolderTest, FolderThatItsGroupCanWriteIsRefused) {
  ASSERT_EQ(chmod(temporary_.path().c_str(), 0770), 0);
  EXPECT_FALSE(prepareAccessoryFolder(temporary_.path(), error_));
  EXPECT_EQ(error_, "accessory folder " + temporary_.path() + " can be written by others; run: chmod go-w " +
                        temporary_.path());
}

TEST_F(AccessoryFolderTest, FolderThatOthersCanWriteIsRefused) {
  ASSERT_EQ(chmod(temporary_.path().c_str(), 0702), 0);
  EXPECT_FALSE(prepareAccessoryFolder(temporary_.path(), error_));
}

TEST_F(AccessoryFolderTest, FolderThatOthersCanOnlyReadIsAccepted) {
  ASSERT_EQ(chmod(temporary_.path().c_str(), 0755), 0);
  EXPECT_TRUE(prepareAccessoryFolder(temporary_.path(), error_)) << error_;
}

TEST_F(AccessoryFolderTest, FolderThatIsSharedKeepsItsRights) {
  for (const mode_t shared : {mode_t{01777}, mode_t{02775}}) {
    ASSERT_EQ(chmod(temporary_.path().c_str(), shared), 0);
    EXPECT_FALSE(prepareAccessoryFolder(temporary_.path(), error_));
    EXPECT_EQ(error_, "accessory folder " + temporary_.path() + " is shared with others; choose a folder of your own");
  }
}

TEST_F(AccessoryFolderTest, PathThatWasMistypedIsNotMade) {
  EXPECT_FALSE(prepareAccessoryFolder(temporary_.path() + "/nonexist/a/b", error_));
  EXPECT_EQ(error_, "accessory folder " + temporary_.path() + "/nonexist/a/b cannot be made: there is no " +
                        temporary_.path() + "/nonexist; choose another folder");
  EXPECT_EQ(modeOf(temporary_.path() + "/nonexist"), 0U);
}

TEST_F(AccessoryFolderTest, FolderOfAnotherUserIsRefused) {
  if (geteuid() == 0) {
    ASSERT_EQ(chown(temporary_.path().c_str(), 65534, static_cast<gid_t>(-1)), 0);
    EXPECT_FALSE(prepareAccessoryFolder(temporary_.path(), error_));
  } else {
    EXPECT_FALSE(prepareAccessoryFolder("/", error_));
  }
  EXPECT_THAT(error_, HasSubstr("belongs to another user; choose a folder of your own"));
}

TEST_F(AccessoryFolderTest, LinkOfThisUserIsFollowed) {
  const std::string link = temporary_.path() + "/link";
  ASSERT_EQ(symlink(temporary_.path().c_str(), link.c_str()), 0);
  EXPECT_TRUE(prepareAccessoryFolder(link, error_)) << error_;
}

TEST_F(AccessoryFolderTest, LinkOfAnotherUserIsRefused) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can make a link of another user";
  const std::string link = temporary_.path() + "/link";
  ASSERT_EQ(symlink(temporary_.path().c_str(), link.c_str()), 0);
  ASSERT_EQ(lchown(link.c_str(), 65534, static_cast<gid_t>(-1)), 0);
  EXPECT_FALSE(prepareAccessoryFolder(link + "/", error_)) << "a slash behind it does not hide the link";
}

TEST_F(AccessoryFolderTest, PlainFileIsRefused) {
  temporary_.write("file", "");
  EXPECT_FALSE(prepareAccessoryFolder(temporary_.path() + "/file", error_));
  EXPECT_THAT(error_, HasSubstr("is not a folder"));
}

TEST_F(AccessoryFolderTest, FolderThatCannotBeMadeIsNamedWithItsFault) {
  EXPECT_FALSE(prepareAccessoryFolder("/proc/zel/accessories", error_));
  EXPECT_EQ(error_,
            "accessory folder /proc/zel/accessories cannot be made: No such file or directory; choose another folder");
}

}  // namespace
}  // namespace zel::platform

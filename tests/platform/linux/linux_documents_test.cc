#include "platform/linux/linux_documents.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>

#include "tests/platform/linux/temporary_folder.h"

namespace zel::platform {
namespace {

class LinuxDocumentsTest : public testing::Test {
 protected:
  LinuxDocumentsTest() {
    if (const char* const home = std::getenv("HOME")) home_ = home;
    ::setenv("HOME", folder.file("home").c_str(), 1);
    ::unsetenv("XDG_DATA_HOME");
  }
  ~LinuxDocumentsTest() override {
    ::setenv("HOME", home_.c_str(), 1);
    ::unsetenv("XDG_DATA_HOME");
  }

  static mode_t modeOf(const std::string& path) {
    struct stat found = {};
    return stat(path.c_str(), &found) == 0 ? found.st_mode : 0;
  }

  test::TemporaryFolder folder;

 private:
  std::string home_;
};

TEST_F(LinuxDocumentsTest, AreInTheUsersDataFolder) {
  EXPECT_EQ(LinuxDocuments("").folder(), folder.file("home/.local/share/zelcam"));
}

TEST_F(LinuxDocumentsTest, FollowTheVariableOfTheDataFolder) {
  ::setenv("XDG_DATA_HOME", folder.file("data").c_str(), 1);
  EXPECT_EQ(LinuxDocuments("").folder(), folder.file("data/zelcam"));
}

TEST_F(LinuxDocumentsTest, TakeARelativeDataFolderForNone) {
  ::setenv("XDG_DATA_HOME", "data", 1);
  EXPECT_EQ(LinuxDocuments("").folder(), folder.file("home/.local/share/zelcam"));
}

TEST_F(LinuxDocumentsTest, AreWhereTheHostWantsThem) {
  EXPECT_EQ(LinuxDocuments(folder.file("mine")).folder(), folder.file("mine"));
}

TEST_F(LinuxDocumentsTest, AreMadeForTheirOwnerAloneWhenTheyAreAskedFor) {
  LinuxDocuments documents(folder.file("a/b"));
  EXPECT_EQ(modeOf(folder.file("a")), 0u);
  documents.folder();
  EXPECT_EQ(modeOf(folder.file("a/b")), static_cast<mode_t>(S_IFDIR | 0700));
}

TEST_F(LinuxDocumentsTest, AreNowhereWhereTheyCannotBeMade) {
  folder.write("file", "in the way");
  EXPECT_EQ(LinuxDocuments(folder.file("file/below")).folder(), "");
}

TEST_F(LinuxDocumentsTest, AreNowhereWithoutAHome) {
  ::unsetenv("HOME");
  EXPECT_EQ(LinuxDocuments("").folder(), "");
}

}  // namespace
}  // namespace zel::platform

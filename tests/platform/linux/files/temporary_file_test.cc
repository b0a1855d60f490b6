#include "platform/linux/files/temporary_file.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <vector>

#include "tests/platform/linux/temporary_folder.h"

namespace zel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::uint8_t> kBytes = {'n', 'e', 'w'};

class TemporaryFileTest : public testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder.file(name); }
  std::set<std::string> names() const {
    std::set<std::string> all;
    for (const auto& entry : fs::directory_iterator(folder.path())) all.insert(entry.path().filename().string());
    return all;
  }
  std::string contents(const std::string& name) const {
    std::stringstream text;
    text << std::ifstream(path(name)).rdbuf();
    return text.str();
  }

  const test::TemporaryFolder folder;
};

TEST_F(TemporaryFileTest, IsGoneWithItsObject) {
  {
    TemporaryFile file(folder.path());
    ASSERT_TRUE(file.isThere());
    EXPECT_TRUE(file.write(kBytes));
    EXPECT_EQ(names(), std::set{fs::path(file.path()).filename().string()});
  }
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(TemporaryFileTest, AppearsUnderItsNameAndReplacesNothing) {
  folder.write("taken", "old");
  {
    TemporaryFile file(folder.path());
    EXPECT_TRUE(file.write(kBytes));
    EXPECT_FALSE(file.appearAs(path("taken")));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_TRUE(file.appearAs(path("free")));
  }
  EXPECT_THAT(names(), ElementsAre("free", "taken"));
  EXPECT_EQ(contents("taken"), "old");
  EXPECT_EQ(contents("free"), "new");
}

TEST_F(TemporaryFileTest, ReplacesWhereItIsToldTo) {
  folder.write("taken", "old");
  {
    TemporaryFile file(folder.path());
    EXPECT_TRUE(file.write(kBytes));
    EXPECT_TRUE(file.replace(path("taken")));
  }
  EXPECT_THAT(names(), ElementsAre("taken"));
  EXPECT_EQ(contents("taken"), "new");
}

TEST_F(TemporaryFileTest, WhatAKilledProgramLeftIsRemovedByTheNextOne) {
  const pid_t child = ::fork();
  if (child == 0) {
    const TemporaryFile file(folder.path());
    ::_exit(file.isThere() ? 0 : 1);  // no destructor runs
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_EQ(status, 0);
  ASSERT_EQ(names().size(), 1u);
  { const TemporaryFile next(folder.path()); }
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(TemporaryFileTest, WhatIsStillWrittenStays) {
  const TemporaryFile one(folder.path());
  const TemporaryFile two(folder.path());
  EXPECT_TRUE(fs::exists(one.path()));
  EXPECT_TRUE(fs::exists(two.path()));
}

TEST_F(TemporaryFileTest, NothingElseIsTakenForALeftover) {
  for (const char* name : {".zelcam-12345", ".zelcam-1234567", ".zelcam-abc-ef", "zelcam-abcdef"})
    folder.write(name, "");
  fs::create_directory(path(".zelcam-folder"));
  fs::create_symlink("zelcam-abcdef", path(".zelcam-linked"));
  removeLeftovers(folder.path());
  EXPECT_EQ(names().size(), 6u);
}

TEST_F(TemporaryFileTest, AFolderThatIsNotThereIsAnError) {
  const TemporaryFile file(path("missing"));
  EXPECT_FALSE(file.isThere());
  EXPECT_EQ(errno, ENOENT);
}

}  // namespace
}  // namespace zel

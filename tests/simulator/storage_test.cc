#include "simulator/storage.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "tests/simulator/temporary_folder.h"

namespace zel::simulator {
namespace {

namespace fs = std::filesystem;

class StorageTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  Storage storage{folder.path().string()};
};

TEST_F(StorageTest, WritesAFileAsItIs) {
  const Bytes content = {0, 1, 0xFF, '\n', '\r', 0};
  EXPECT_TRUE(storage.write("file.bin", content));
  EXPECT_EQ(contentOf(folder.path() / "file.bin"), content);
  EXPECT_EQ(entriesIn(folder.path()), 1u);
}

TEST_F(StorageTest, WritesAnEmptyFile) {
  EXPECT_TRUE(storage.write("empty", {}));
  EXPECT_EQ(contentOf(folder.path() / "empty"), Bytes{});
}

TEST_F(StorageTest, MakesSubFolders) {
  EXPECT_TRUE(storage.write("one/two words/...", Bytes{7}));
  EXPECT_EQ(contentOf(folder.path() / "one/two words/..."), Bytes{7});
}

TEST_F(StorageTest, ReplacesAFile) {
  EXPECT_TRUE(storage.write("a", Bytes{1, 2, 3}));
  EXPECT_TRUE(storage.write("a", Bytes{4}));
  EXPECT_EQ(contentOf(folder.path() / "a"), Bytes{4});
}

TEST_F(StorageTest, RefusesPathsThatLeaveTheFolderOrAreNone) {
  for (const char* path : {"", "/", "/etc/x", "..", "../x", "a/../x", "a/..", ".", "./x", "a/./x", "a//x", "a/", "//x",
                           "a\nb", "a\x01", "\x7F", "tab\t"})
    EXPECT_FALSE(storage.write(path, Bytes{1})) << path;
  EXPECT_EQ(entriesIn(folder.path()), 0u);
}

TEST_F(StorageTest, LeavesNothingOfAFileThatCannotHaveItsName) {
  EXPECT_TRUE(storage.write("a/b", Bytes{1}));
  EXPECT_FALSE(storage.write("a", Bytes{2}));                    // a folder
  EXPECT_FALSE(storage.write("a/b/c", Bytes{2}));                // below a file
  EXPECT_FALSE(storage.write(std::string(256, 'n'), Bytes{2}));  // too long a name
  EXPECT_EQ(entriesIn(folder.path()), 2u);
}

TEST_F(StorageTest, MakesTheFolderThatIsMissing) {
  const Storage made((folder.path() / "x/y").string());
  EXPECT_TRUE(made.ok());
  EXPECT_TRUE(fs::is_directory(folder.path() / "x/y"));
}

TEST_F(StorageTest, CannotStandOnAFile) {
  ASSERT_TRUE(storage.write("file", Bytes{1}));
  EXPECT_FALSE(Storage((folder.path() / "file").string()).ok());
  EXPECT_FALSE(Storage((folder.path() / "file/below").string()).ok());
}

TEST_F(StorageTest, RemovesATemporaryFolderWithEverythingInIt) {
  fs::path path;
  {
    const Storage temporary{std::string()};
    path = temporary.folder();
    EXPECT_TRUE(temporary.write("a/b", Bytes{1}));
    EXPECT_TRUE(fs::exists(path / "a/b"));
  }
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(StorageTest, KeepsAFolderThatItWasGiven) {
  storage.write("a", Bytes{1});
  storage.end();
  EXPECT_EQ(contentOf(folder.path() / "a"), Bytes{1});
  EXPECT_FALSE(storage.write("b", Bytes{1}));
}

}  // namespace
}  // namespace zel::simulator

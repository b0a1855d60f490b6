#include "support/log_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace zel {
namespace {

// Nobody's rights, where the test runs as root, who may read everything.
// Errors: false where they cannot be had.
class WithoutPrivileges {
 public:
  WithoutPrivileges() { had_ = ::geteuid() != 0 || ::seteuid(kNobody) == 0; }
  ~WithoutPrivileges() {
    if (::getuid() == 0) had_ = ::seteuid(0) == 0;
  }
  explicit operator bool() const { return had_; }

 private:
  static constexpr uid_t kNobody = 65534;
  bool had_ = false;
};

class LogFileTest : public testing::Test {
 protected:
  LogFileTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zel-log-XXXXXX").string();
    folder = ::mkdtemp(pattern.data());
  }
  ~LogFileTest() override { std::filesystem::remove_all(folder); }

  std::string file(const std::string& name = "log.txt") const { return (folder / name).string(); }

  void append(std::string_view text) const {
    appendToFile(file(), {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  }

  static std::string contentOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return stream ? std::string(std::istreambuf_iterator<char>(stream), {}) : "no file";
  }

  // Other writers have the temporary names with exactly those numbers.
  void occupy(int first, int last) const {
    for (int number = 0; number < 100; ++number) {
      const std::string name = file("log.txt." + std::to_string(number) + ".part");
      std::filesystem::remove(name);
      if (number >= first && number <= last) std::ofstream(name) << "another's";
    }
  }

  std::ptrdiff_t filesThere() const {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
  }

  std::filesystem::path folder;
};

TEST_F(LogFileTest, AppearsWithTheBytesOfTheFirstWrite) {
  append(std::string_view("a\0b\n", 4));
  EXPECT_EQ(contentOf(file()), std::string("a\0b\n", 4));
  EXPECT_EQ(filesThere(), 1);
}

TEST_F(LogFileTest, GrowsByTheBytesOfEachFurtherWrite) {
  append("one");
  append("two");
  append("three\n");
  EXPECT_EQ(contentOf(file()), "onetwothree\n");
}

TEST_F(LogFileTest, AppearsEmptyAfterAWriteOfNothing) {
  append("");
  EXPECT_EQ(contentOf(file()), "");
  EXPECT_EQ(filesThere(), 1);
}

TEST_F(LogFileTest, GrowsFromAnEmptyFile) {
  append("");
  append("one");
  EXPECT_EQ(contentOf(file()), "one");
}

TEST_F(LogFileTest, StaysAsItIsAfterAFurtherWriteOfNothing) {
  append("one");
  append("");
  EXPECT_EQ(contentOf(file()), "one");
}

TEST_F(LogFileTest, TakesTheNextTemporaryNameWhereAnotherWriterHasTheFirst) {
  std::ofstream(file("log.txt.0.part")) << "another's";
  append("mine");
  EXPECT_EQ(contentOf(file()), "mine");
  EXPECT_EQ(contentOf(file("log.txt.0.part")), "another's");
}

TEST_F(LogFileTest, TakesAnyOfAHundredTemporaryNames) {
  occupy(1, 99);
  append("mine");
  EXPECT_EQ(contentOf(file()), "mine");
  occupy(0, 98);
  std::filesystem::remove(file());
  append("mine again");
  EXPECT_EQ(contentOf(file()), "mine again");
}

TEST_F(LogFileTest, LosesTheBytesInSilenceWhereAHundredTemporaryNamesAreTaken) {
  occupy(0, 99);
  append("lost");
  EXPECT_EQ(contentOf(file()), "no file");
  EXPECT_EQ(filesThere(), 100);
}

// No file of this process may grow beyond so many bytes meanwhile.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : former_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &limit_);
    const rlimit smaller{bytes, limit_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &smaller);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &limit_);
    std::signal(SIGXFSZ, former_);
  }

 private:
  void (*const former_)(int);
  rlimit limit_{};
};

TEST_F(LogFileTest, ReplacesNothingByHalfOfTheBytes) {
  std::filesystem::create_symlink("log.txt", file());  // a link that leads to itself
  {
    const FileSizeLimit limit(4);
    append("0123456789");
  }
  EXPECT_TRUE(std::filesystem::is_symlink(file()));
  EXPECT_EQ(filesThere(), 1);
}

TEST_F(LogFileTest, ReplacesWhatCannotBeOpened) {
  std::filesystem::create_symlink("log.txt", file());  // a link that leads to itself
  append("one");
  EXPECT_EQ(contentOf(file()), "one");
  EXPECT_FALSE(std::filesystem::is_symlink(file()));
}

TEST_F(LogFileTest, GrowsWhereItMayBeWrittenAndNotRead) {
  append("one");
  std::filesystem::permissions(folder, std::filesystem::perms::all);
  ASSERT_EQ(::chmod(file().c_str(), 0222), 0);
  {
    const WithoutPrivileges nobody;
    if (!nobody) GTEST_SKIP() << "this machine lets nobody give up their rights";
    ASSERT_EQ(contentOf(file()), "no file");
    append("two");
  }
  ASSERT_EQ(::chmod(file().c_str(), 0600), 0);
  EXPECT_EQ(contentOf(file()), "onetwo");
}

TEST_F(LogFileTest, LosesTheBytesInSilenceWhereTheFolderIsMissing) {
  std::filesystem::remove(folder);
  append("lost");
  EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST_F(LogFileTest, LosesTheBytesInSilenceWhereAFolderHasTheName) {
  std::filesystem::create_directories(file("log.txt/below"));
  append("lost");
  EXPECT_TRUE(std::filesystem::is_directory(file()));
  EXPECT_EQ(filesThere(), 1);
}

TEST_F(LogFileTest, LosesTheBytesInSilenceWhereNothingCanBePositioned) {
  ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
  append("lost");
  EXPECT_TRUE(std::filesystem::is_fifo(file()));
  EXPECT_EQ(filesThere(), 1);
}

TEST_F(LogFileTest, LosesTheBytesInSilenceWhereTheDiskIsFull) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this machine has no /dev/full";
  std::filesystem::create_symlink("/dev/full", file());
  append("lost");
  EXPECT_TRUE(std::filesystem::is_symlink(file()));
  EXPECT_EQ(filesThere(), 1);
}

}  // namespace
}  // namespace zel

#include "outputs/disk_sync.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <vector>

#include "outputs/mp4_boxes.h"
#include "outputs/mp4_sink.h"
#include "tests/outputs/film_folder.h"

namespace {

// How large each file was when this thread waited for the disk. Outputs of other tests have threads of their own.
thread_local std::vector<std::uint64_t> syncedSizes;

}  // namespace

// Takes the place of the C library's in this program.
extern "C" int fdatasync(int file) {
  struct stat found {};
  if (::fstat(file, &found) == 0) syncedSizes.push_back(static_cast<std::uint64_t>(found.st_size));
  return static_cast<int>(::syscall(SYS_fdatasync, file));
}

namespace zel {
namespace {

using testing::Contains;
using testing::IsEmpty;

class DiskSyncTest : public FilmFolderTest {
 protected:
  void SetUp() override { syncedSizes.clear(); }

  const TestFilm film{25};  // a fragment of a second each
};

TEST_F(DiskSyncTest, EachFragmentOfAnMp4FileIsWaitedFor) {
  Mp4Sink sink(address("a.mp4"), [](const std::string&) {});
  ASSERT_EQ(writeAll(sink, film), std::nullopt);
  const std::string text = contents("a.mp4");
  const std::vector<std::uint8_t> bytes(text.begin(), text.end());
  const auto boxes = boxesIn(bytes, 0, bytes.size());
  ASSERT_TRUE(boxes);
  std::size_t fragments = 0;
  for (const Mp4Box& box : *boxes) {
    if (box.type != boxType("mdat")) continue;
    EXPECT_THAT(syncedSizes, Contains(box.end));
    ++fragments;
  }
  EXPECT_EQ(fragments, 2u);
  EXPECT_LE(syncedSizes.size(), fragments + 1);  // and not for each picture
}

TEST_F(DiskSyncTest, AFileThatStaysInFragmentsIsWaitedForAtItsEnd) {
  LibavSink sink(address("a.mp4"));
  ASSERT_EQ(writeAll(sink, film), std::nullopt);
  ASSERT_EQ(sink.finish(), std::nullopt);
  ASSERT_FALSE(syncedSizes.empty());
  EXPECT_EQ(syncedSizes.back(), contents("a.mp4").size());
}

TEST_F(DiskSyncTest, EachSegmentOfAListIsWaitedFor) {
  ASSERT_EQ(writeFile("a.m3u8", film), std::nullopt);
  EXPECT_THAT(syncedSizes, Contains(contents("a-00000.ts").size()));
  EXPECT_THAT(syncedSizes, Contains(contents("a-00001.ts").size()));
}

TEST_F(DiskSyncTest, ADeviceHasNothingToWaitFor) {
  DiskSync disk;
  EXPECT_EQ(disk.open("/dev/full"), 0);
  EXPECT_EQ(disk.sync(), 0);
  EXPECT_THAT(syncedSizes, IsEmpty());
}

TEST_F(DiskSyncTest, AFileThatIsNotThereIsAnError) {
  DiskSync disk;
  EXPECT_EQ(disk.open(path("missing")), ENOENT);
}

}  // namespace
}  // namespace zel

#include "outputs/hls_files.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

#include "tests/outputs/film_folder.h"
#include "tests/outputs/read_back.h"

namespace zel {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

// Segments end with the first key picture after two seconds: at 2 s, at 4 s and at the film's end.
class HlsFilesTest : public FilmFolderTest {
 protected:
  // A segment that no byte fits into, as on a full disk.
  void fill(const std::string& segment) const { fs::create_symlink("/dev/full", path(segment)); }
  bool isThere(const std::string& name) const { return fs::exists(fs::symlink_status(path(name))); }
  std::ptrdiff_t filesInFolder() const {
    return std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator());
  }

  const TestFilm film{45};
};

TEST_F(HlsFilesTest, AFullDiskIsToldAndLeavesNeitherListNorBrokenSegment) {
  fill("a-00000.ts");
  EXPECT_EQ(writeFile("a.m3u8", film), "cannot write " + path("a.m3u8") + ": No space left on device");
  EXPECT_EQ(filesInFolder(), 0);
}

TEST_F(HlsFilesTest, ADiskThatFillsLaterLeavesTheListOfWhatIsWhole) {
  fill("a-00001.ts");
  EXPECT_EQ(writeFile("a.m3u8", film), "cannot write " + path("a.m3u8") + ": No space left on device");
  EXPECT_THAT(contents("a.m3u8"), HasSubstr("a-00000.ts"));
  EXPECT_THAT(contents("a.m3u8"), Not(HasSubstr("a-00001.ts")));
  EXPECT_FALSE(isThere("a-00001.ts"));
  EXPECT_EQ(readBack(path("a-00000.ts")).pictures, 20);  // the list still waits for more
}

TEST_F(HlsFilesTest, TheLastSegmentCountsToo) {
  fill("a-00002.ts");  // which the end of the film closes
  EXPECT_EQ(writeFile("a.m3u8", film), "cannot write " + path("a.m3u8") + ": No space left on device");
  EXPECT_THAT(contents("a.m3u8"), Not(HasSubstr("a-00002.ts")));
}

TEST_F(HlsFilesTest, AListThatCannotBeWrittenLeavesTheOneBefore) {
  LibavSink sink(address("a.m3u8"));
  ASSERT_EQ(sink.open(film.headers), std::nullopt);
  Fault fault;
  std::string first;
  for (const MediaPacket& packet : film.packets) {
    if (!fault) fault = sink.write(packet);
    if (!first.empty() || !isThere("a.m3u8")) continue;
    first = contents("a.m3u8");
    fill("a.m3u8.tmp");  // which the muxer makes the list of
  }
  if (!fault) fault = sink.finish();
  EXPECT_EQ(fault, "cannot write " + path("a.m3u8") + ": No space left on device");
  EXPECT_THAT(first, HasSubstr("a-00000.ts"));
  EXPECT_EQ(contents("a.m3u8"), first);
  EXPECT_FALSE(isThere("a.m3u8.tmp"));
}

TEST_F(HlsFilesTest, AListCanBeReadByWhomFilesCan) {
  ASSERT_EQ(writeFile("a.m3u8", film), std::nullopt);
  EXPECT_EQ(fs::status(path("a.m3u8")).permissions(), fs::status(path("a-00000.ts")).permissions());
}

}  // namespace
}  // namespace zel

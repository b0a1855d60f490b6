#include "outputs/segments.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <set>

#include "tests/platform/linux/temporary_folder.h"

namespace zel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

class SegmentsTest : public testing::Test {
 protected:
  void make(const std::string& name) const { folder_.write(name, "x"); }
  std::set<std::string> names() const {
    std::set<std::string> all;
    for (const auto& entry : fs::directory_iterator(folder_.path())) all.insert(entry.path().filename().string());
    return all;
  }
  std::string playlist() const { return folder_.file("a.m3u8"); }

 private:
  const test::TemporaryFolder folder_;
};

TEST_F(SegmentsTest, BearThePlaylistsName) {
  EXPECT_EQ(segmentPattern("folder/a.m3u8"), "folder/a-%05d.ts");
  EXPECT_EQ(segmentPattern("/f/100%.m3u8"), "/f/100%%-%05d.ts");
}

TEST_F(SegmentsTest, ThoseOfAnEarlierRunAreRemovedAndNothingElse) {
  for (const char* name : {"a.m3u8", "a-00000.ts", "a-123456.ts", "a-1.ts", "a-0000x.ts", "b-00000.ts", "a-00001.mp4"})
    make(name);
  forgetSegments(playlist());
  EXPECT_THAT(names(), ElementsAre("a-00001.mp4", "a-0000x.ts", "a-1.ts", "b-00000.ts"));
}

TEST_F(SegmentsTest, WithoutAPlaylistNothingIsRemoved) {
  make("a-00000.ts");
  forgetSegments(playlist());
  EXPECT_THAT(names(), ElementsAre("a-00000.ts"));
}

}  // namespace
}  // namespace zel

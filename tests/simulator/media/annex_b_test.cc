#include "simulator/media/annex_b.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zel::simulator {
namespace {

using testing::ElementsAre;

// A slice's byte behind the header begins with a 1 when it is the first of its picture.
const Bytes kStream{0, 0, 0, 1,    0x67, 0x42,        // 0: parameter sets
                    0, 0, 0, 1,    0x68, 0xCE,        // 6
                    0, 0, 0, 1,    0x65, 0x88, 0x01,  // 12: a key picture of two slices
                    0, 0, 1, 0x65, 0x48, 0x02,        // 19
                    0, 0, 0, 1,    0x41, 0x9A, 0x03,  // 25: the next picture
                    0, 0, 1, 0x09, 0xF0,              // 32: a delimiter, and the one after
                    0, 0, 1, 0x41, 0x9A, 0x04};       // 37

TEST(AnnexBTest, FindsUnitsBehindBothStartCodes) {
  std::vector<std::size_t> begins, headers, ends;
  for (const UnitPlace& unit : unitsIn(kStream)) {
    begins.push_back(unit.begin);
    headers.push_back(unit.header);
    ends.push_back(unit.end);
  }
  EXPECT_THAT(begins, ElementsAre(0, 6, 12, 19, 25, 32, 37));
  EXPECT_THAT(headers, ElementsAre(4, 10, 16, 22, 29, 35, 40));
  EXPECT_THAT(ends, ElementsAre(6, 12, 19, 25, 32, 37, 43));
}

TEST(AnnexBTest, CutsBetweenPictures) {
  const auto pictures = picturesIn(kStream);
  ASSERT_EQ(pictures.size(), 3u);
  EXPECT_EQ(pictures[0].bytes, Bytes(kStream.begin(), kStream.begin() + 25));
  EXPECT_EQ(pictures[1].bytes, Bytes(kStream.begin() + 25, kStream.begin() + 32));
  EXPECT_EQ(pictures[2].bytes, Bytes(kStream.begin() + 32, kStream.end()));
  EXPECT_TRUE(pictures[0].key);
  EXPECT_FALSE(pictures[1].key);
}

TEST(AnnexBTest, LeavesOutWhatStandsBeforeTheFirstStartCode) {
  Bytes stream{9, 9, 9};
  stream.insert(stream.end(), kStream.begin(), kStream.end());
  EXPECT_EQ(picturesIn(stream).front().bytes, picturesIn(kStream).front().bytes);
}

TEST(AnnexBTest, LeavesOutParameterSetsWithoutAPicture) {
  const Bytes stream(kStream.begin(), kStream.begin() + 12);
  EXPECT_TRUE(picturesIn(stream).empty());
  Bytes twice = kStream;
  twice.insert(twice.end(), stream.begin(), stream.end());
  EXPECT_EQ(picturesIn(twice).size(), 3u);
}

TEST(AnnexBTest, SurvivesAStreamThatIsCutAnywhere) {
  for (std::size_t size = 0; size <= kStream.size(); ++size) {
    const auto pictures = picturesIn({kStream.data(), size});
    EXPECT_LE(pictures.size(), 3u) << size;
    EXPECT_EQ(pictures.empty(), size < 17) << size;  // the key picture's header is byte 16
  }
}

}  // namespace
}  // namespace zel::simulator

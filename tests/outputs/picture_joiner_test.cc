#include "outputs/picture_joiner.h"

#include <gmock/gmock.h>

namespace zel {
namespace {

using testing::ElementsAre;

// Behind the start code: the header, then 1 for macroblock 0 or 010 for macroblock 1 in the highest bits.
const std::vector<std::uint8_t> kBegins = {0, 0, 0, 1, 0x65, 0x80};
const std::vector<std::uint8_t> kGoesOn = {0, 0, 0, 1, 0x65, 0x40};

TEST(PictureJoinerTest, APictureIsWholeWhenTheNextBegins) {
  PictureJoiner joiner;
  EXPECT_FALSE(joiner.add(kBegins, true, 10));
  const auto picture = joiner.add(kBegins, false, 20);
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->bytes, kBegins);
  EXPECT_TRUE(picture->key);
  EXPECT_EQ(picture->time, 10);
}

TEST(PictureJoinerTest, PutsSlicesTogetherUnderTheFirstOnesTime) {
  PictureJoiner joiner;
  joiner.add(kBegins, true, 10);
  EXPECT_FALSE(joiner.add(kGoesOn, true, 12));
  const auto picture = joiner.flush();
  ASSERT_TRUE(picture);
  EXPECT_THAT(picture->bytes, ElementsAre(0, 0, 0, 1, 0x65, 0x80, 0, 0, 0, 1, 0x65, 0x40));
  EXPECT_EQ(picture->time, 10);
  EXPECT_FALSE(joiner.flush());
}

TEST(PictureJoinerTest, KnowsTheFirstSliceOfAPicture) {
  EXPECT_TRUE(beginsPicture(kBegins));
  EXPECT_FALSE(beginsPicture(kGoesOn));
  EXPECT_FALSE(beginsPicture(std::vector<std::uint8_t>{0, 0, 0, 1, 0x65}));
}

TEST(PictureJoinerTest, LeavesOutWhatHasNoBeginningOrNoData) {
  PictureJoiner joiner;
  joiner.add(kGoesOn, true, 10);
  joiner.add(std::vector<std::uint8_t>{0, 0, 0, 1, 0x65}, true, 11);
  joiner.add({}, true, 12);
  EXPECT_FALSE(joiner.flush());
}

}  // namespace
}  // namespace zel

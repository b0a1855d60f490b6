#include "platform/render/fringe_filter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace zel::render {
namespace {

using testing::ElementsAre;

// A grey picture of 64 x 32, dark but for one pixel, and purple all over.
class FringeFilterTest : public testing::Test {
 protected:
  void colour(std::uint8_t cb, std::uint8_t cr) {
    for (std::size_t i = 0; i < chroma_.size(); i += 2) {
      chroma_[i] = cb;
      chroma_[i + 1] = cr;
    }
  }

  void light(std::size_t x, std::size_t y, std::uint8_t luma = 250) { luma_[y * 64 + x] = luma; }

  void filter() {
    FringeFilter filter({64, 32}, 2);
    for (std::size_t row = 0; row < 16; ++row) filter.filterRow({luma_.data(), 64, chroma_.data(), 64}, row, row % 2);
  }

  std::vector<int> sample(std::size_t column, std::size_t row) const {
    return {chroma_[row * 64 + 2 * column], chroma_[row * 64 + 2 * column + 1]};
  }

  std::vector<std::uint8_t> luma_ = std::vector<std::uint8_t>(64 * 32, 100);
  std::vector<std::uint8_t> chroma_ = std::vector<std::uint8_t>(64 * 16, 128);
};

TEST_F(FringeFilterTest, TakesThePurpleOffNextToWhatIsBright) {
  colour(160, 150);
  light(20, 10);
  filter();
  EXPECT_THAT(sample(10, 5), ElementsAre(138, 128));
  EXPECT_THAT(sample(13, 5), ElementsAre(138, 128));
  EXPECT_THAT(sample(7, 5), ElementsAre(138, 128));
  EXPECT_THAT(sample(10, 8), ElementsAre(138, 128));
  EXPECT_THAT(sample(10, 2), ElementsAre(138, 128));
}

TEST_F(FringeFilterTest, LeavesWhatIsFarther) {
  colour(160, 150);
  light(20, 10);
  filter();
  EXPECT_THAT(sample(14, 5), ElementsAre(160, 150));
  EXPECT_THAT(sample(6, 5), ElementsAre(160, 150));
  EXPECT_THAT(sample(10, 9), ElementsAre(160, 150));
  EXPECT_THAT(sample(10, 1), ElementsAre(160, 150));
}

TEST_F(FringeFilterTest, LeavesOtherColours) {
  for (const auto& [cb, cr] : {std::pair{160, 110}, {110, 160}, {100, 100}, {128, 128}}) {
    colour(static_cast<std::uint8_t>(cb), static_cast<std::uint8_t>(cr));
    light(20, 10);
    filter();
    EXPECT_THAT(sample(10, 5), ElementsAre(cb, cr));
  }
}

TEST_F(FringeFilterTest, TakesHalfWhereItIsHalfAsBright) {
  colour(160, 150);
  light(20, 10, 220);
  filter();
  EXPECT_THAT(sample(10, 5), ElementsAre(149, 139));
}

TEST_F(FringeFilterTest, TakesNothingUpTo200) {
  colour(160, 150);
  light(20, 10, 200);
  filter();
  EXPECT_THAT(sample(10, 5), ElementsAre(160, 150));
}

TEST_F(FringeFilterTest, LooksAcrossTheEdgesOfThePicture) {
  colour(160, 150);
  light(0, 0);
  light(63, 31);
  filter();
  EXPECT_THAT(sample(29, 0), ElementsAre(138, 128));
  EXPECT_THAT(sample(28, 0), ElementsAre(160, 150));
  EXPECT_THAT(sample(2, 15), ElementsAre(138, 128));
  EXPECT_THAT(sample(3, 15), ElementsAre(160, 150));
}

TEST(FringeFilterSizeTest, TakesTheSmallestPicture) {
  std::uint8_t luma[4] = {255, 0, 0, 0}, chroma[2] = {160, 150};
  FringeFilter({2, 2}, 1).filterRow({luma, 2, chroma, 2}, 0, 0);
  EXPECT_THAT(chroma, ElementsAre(138, 128));
}

}  // namespace
}  // namespace zel::render

#include "platform/render/gain_match.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "tests/platform/render/pictures.h"

namespace zel::render {
namespace {

using testing::ElementsAre;

constexpr int kWidth = 304, kHeight = 152;

class GainMatchTest : public testing::Test {
 protected:
  explicit GainMatchTest(std::string_view offset = kFactoryOffset) : model_(*parseLensModel(offset).model) {
    for (const Lens& lens : model_.lenses) views_.emplace_back(model_, lens, kWidth, kHeight);
  }

  // What the match makes of a picture with these values in the circles of the first and the second lens.
  std::vector<int> next(GainMatch& match, std::uint8_t first, std::uint8_t second) {
    std::vector<std::uint8_t> luma;
    for (int pixel = 0; pixel < kWidth * kHeight; ++pixel) luma.push_back(pixel % kWidth < kWidth / 2 ? first : second);
    const LensGains gains = match.next({luma.data(), kWidth, kWidth, kHeight});
    return {gains.lens[0], gains.lens[1]};
  }

  GainMatch match() const { return GainMatch(views_, model_.fieldOfView, kWidth, kHeight); }

  const LensModel model_;
  std::vector<LensView> views_;
};

TEST_F(GainMatchTest, LeavesEqualLensesAlone) {
  GainMatch equal = match();
  EXPECT_THAT(next(equal, 120, 120), ElementsAre(32768, 32768));
}

TEST_F(GainMatchTest, MeetsInTheMiddleAtOnce) {
  GainMatch unequal = match();
  EXPECT_THAT(next(unequal, 100, 121), ElementsAre(36045, 29789));  // by 1.1 and 1 / 1.1
}

TEST_F(GainMatchTest, GoesAnEighthOfTheWayAfterwards) {
  GainMatch changing = match();
  next(changing, 100, 121);
  // 1.1 to the power of 7/8 and its inverse.
  EXPECT_THAT(next(changing, 100, 100), ElementsAre(35618, 30146));
}

TEST_F(GainMatchTest, KeepsItsGainsInTheDarkAndInTheGlare) {
  GainMatch kept = match();
  next(kept, 100, 121);
  EXPECT_THAT(next(kept, 15, 200), ElementsAre(36045, 29789));
  EXPECT_THAT(next(kept, 100, 236), ElementsAre(36045, 29789));
}

TEST_F(GainMatchTest, StartsWithNoneInTheDark) {
  GainMatch dark = match();
  EXPECT_THAT(next(dark, 3, 9), ElementsAre(32768, 32768));
  EXPECT_THAT(next(dark, 100, 121), ElementsAre(36045, 29789));
}

TEST_F(GainMatchTest, DoesNotFollowAbsurdDifferences) {
  GainMatch absurd = match();
  EXPECT_THAT(next(absurd, 16, 235), ElementsAre(40132, 26755));  // by the root of 1.5 and its inverse
}

class GainOfOneLensTest : public GainMatchTest {
 protected:
  GainOfOneLensTest() : GainMatchTest("1_75_76_76_0_0_0_304_152_7") {}
};

TEST_F(GainOfOneLensTest, IsNone) {
  GainMatch one = match();
  EXPECT_THAT(next(one, 100, 121), ElementsAre(32768, 32768));
}

}  // namespace
}  // namespace zel::render

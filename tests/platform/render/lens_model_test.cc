#include "platform/render/lens_model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace zel::render {
namespace {

using testing::HasSubstr;

// One pixel a degree; the first lens looks forward, the second backward.
const std::string kStraight = "2_97.5_100_100_0_0_0_97.5_300_100_180_0_0_400_200_7";

constexpr Direction kForward{0, 0, 1}, kBackward{0, 0, -1}, kRight{1, 0, 0}, kDown{0, 1, 0};
const double kHalf = std::sqrt(0.5);

Sight sightOf(const LensModel& model, std::size_t lens, const Direction& direction, int width = 400, int height = 200) {
  return LensView(model, model.lenses[lens], width, height).sightOf(direction);
}

void expectSight(const Sight& sight, double x, double y, double angle) {
  EXPECT_NEAR(sight.x, x, 1e-9);
  EXPECT_NEAR(sight.y, y, 1e-9);
  EXPECT_NEAR(sight.angle, angle, 1e-9);
}

LensModel turned(double yaw, double pitch, double roll) {
  return {400, 200, 195, {{97.5, 100, 100, yaw, pitch, roll}}};
}

TEST(LensModelTest, ReadsTheCamerasText) {
  const auto parsed = parseLensModel(
      "2_750.000_760.000_761.000_1.000_0.300_-0.400_751.000_2280.000_762.000_179.800_-0.200_0.500_3040_1520_7");
  ASSERT_TRUE(parsed.model) << parsed.fault;
  EXPECT_EQ(parsed.fault, "");
  EXPECT_EQ(parsed.model->width, 3040);
  EXPECT_EQ(parsed.model->height, 1520);
  EXPECT_EQ(parsed.model->fieldOfView, 195);
  ASSERT_EQ(parsed.model->lenses.size(), 2u);
  const Lens& first = parsed.model->lenses[0];
  EXPECT_EQ(first.radius, 750);
  EXPECT_EQ(first.centreX, 760);
  EXPECT_EQ(first.centreY, 761);
  EXPECT_EQ(first.yaw, 1);
  EXPECT_EQ(first.pitch, 0.3);
  EXPECT_EQ(first.roll, -0.4);
  EXPECT_EQ(parsed.model->lenses[1].yaw, 179.8);
}

TEST(LensModelTest, TakesUnknownModelsForLensesOf200Degrees) {
  EXPECT_EQ(fieldOfView(7), 195);
  EXPECT_EQ(fieldOfView(0), 200);
  EXPECT_EQ(fieldOfView(4294967295u), 200);
}

TEST(LensModelTest, ReadsOneLens) {
  const auto parsed = parseLensModel("1_97.5_100_100_0_0_0_200_200_7");
  ASSERT_TRUE(parsed.model) << parsed.fault;
  EXPECT_EQ(parsed.model->lenses.size(), 1u);
}

TEST(LensModelTest, ShowsTheAxisInTheCentre) {
  const LensModel model = *parseLensModel(kStraight).model;
  expectSight(sightOf(model, 0, kForward), 100, 100, 0);
  expectSight(sightOf(model, 1, kBackward), 300, 100, 0);
}

TEST(LensModelTest, ShowsADegreeAsOnePixel) {
  const LensModel model = *parseLensModel(kStraight).model;
  expectSight(sightOf(model, 0, {kHalf, 0, kHalf}), 145, 100, 45);
  expectSight(sightOf(model, 0, {0, -kHalf, kHalf}), 100, 55, 45);
  expectSight(sightOf(model, 0, kDown), 100, 190, 90);
  expectSight(sightOf(model, 0, {kHalf, 0, -kHalf}), 235, 100, 135);
}

TEST(LensModelTest, ShowsTheRightOnTheLeftOfTheLensThatLooksBack) {
  expectSight(sightOf(*parseLensModel(kStraight).model, 1, kRight), 210, 100, 90);
}

TEST(LensModelTest, TurnsByYawToTheRightAndByPitchUp) {
  const double c = std::cos(10 * kRadians), s = std::sin(10 * kRadians);
  expectSight(sightOf(turned(10, 0, 0), 0, {s, 0, c}), 100, 100, 0);
  expectSight(sightOf(turned(0, 10, 0), 0, {0, -s, c}), 100, 100, 0);
}

TEST(LensModelTest, TurnsByRollFromTheRightDown) {
  expectSight(sightOf(turned(0, 0, 90), 0, kDown), 190, 100, 90);
  expectSight(sightOf(turned(0, 0, 90), 0, kRight), 100, 10, 90);
}

TEST(LensModelTest, StretchesTheCirclesToTheStream) {
  const LensModel model = *parseLensModel(kStraight).model;
  expectSight(sightOf(model, 0, {kHalf, 0, kHalf}, 800, 100), 290, 50, 45);
  expectSight(sightOf(model, 0, {0, -kHalf, kHalf}, 800, 100), 200, 27.5, 45);
}

TEST(LensModelTest, HasAPlaceForStraightBehind) { expectSight(sightOf(turned(0, 0, 0), 0, kBackward), 280, 100, 180); }

struct Malformed {
  const char* text;
  const char* fault;
};

class MalformedOffset : public testing::TestWithParam<Malformed> {};

TEST_P(MalformedOffset, GivesNoModelAndSaysWhy) {
  const auto parsed = parseLensModel(GetParam().text);
  EXPECT_FALSE(parsed.model);
  EXPECT_THAT(parsed.fault, HasSubstr(GetParam().fault));
}

INSTANTIATE_TEST_SUITE_P(
    All, MalformedOffset,
    testing::Values(Malformed{"", "the text is empty"},
                    Malformed{"0_(null)_3040_1520_7", "the number of lenses makes no sense"},
                    Malformed{"3_1_1_1_0_0_0", "the number of lenses makes no sense"},
                    Malformed{"two", "the number of lenses is not a whole number"},
                    Malformed{"2.5", "the number of lenses is not a whole number"},
                    Malformed{"-1", "the number of lenses is not a whole number"},
                    Malformed{"1_97.5_100_100_0_0_0_200_200", "10 fields are needed, not 9"},
                    Malformed{"1_97.5_100_100_0_0_0_200_200_7_", "10 fields are needed, not 11"},
                    Malformed{"2_97.5_100_100_0_0_0_200_200_7", "16 fields are needed, not 10"},
                    Malformed{"1__100_100_0_0_0_200_200_7", "the radius of lens 0 is not a number"},
                    Malformed{"1_97,5_100_100_0_0_0_200_200_7", "the radius of lens 0 is not a number"},
                    Malformed{"1_ 97_100_100_0_0_0_200_200_7", "the radius of lens 0 is not a number"},
                    Malformed{"1_+97_100_100_0_0_0_200_200_7", "the radius of lens 0 is not a number"},
                    Malformed{"1_1e2_100_100_0_0_0_200_200_7", "the radius of lens 0 is not a number"},
                    Malformed{"1_97.5.1_100_100_0_0_0_200_200_7", "the radius of lens 0 is not a number"},
                    Malformed{"1_nan_100_100_0_0_0_200_200_7", "the radius of lens 0 is not a number"},
                    Malformed{"1_97_inf_100_0_0_0_200_200_7", "the centre's x of lens 0 is not a number"},
                    Malformed{"1_0_100_100_0_0_0_200_200_7", "the radius of lens 0 makes no sense"},
                    Malformed{"1_-97_100_100_0_0_0_200_200_7", "the radius of lens 0 makes no sense"},
                    Malformed{"1_283_100_100_0_0_0_200_200_7", "the radius of lens 0 makes no sense"},
                    Malformed{"1_97_201_100_0_0_0_200_200_7", "the centre's x of lens 0 makes no sense"},
                    Malformed{"1_97_100_-1_0_0_0_200_200_7", "the centre's y of lens 0 makes no sense"},
                    Malformed{"1_97_100_100_361_0_0_200_200_7", "the yaw of lens 0 makes no sense"},
                    Malformed{"1_97_100_100_0_-361_0_200_200_7", "the pitch of lens 0 makes no sense"},
                    Malformed{"1_97_100_100_0_0_999999999_200_200_7", "the roll of lens 0 makes no sense"},
                    Malformed{"1_97_100_100_0_0_0_0_200_7", "the width makes no sense"},
                    Malformed{"1_97_100_100_0_0_0_200_16385_7", "the height makes no sense"},
                    Malformed{"1_97_100_100_0_0_0_200_200_-7", "the model is not a whole number"},
                    Malformed{"1_97_100_100_0_0_0_200_200_4294967296", "the model is not a whole number"}));

TEST(LensModelTest, RefusesTextsLongerThanAnyCameras) {
  const auto parsed = parseLensModel("1_97." + std::string(600, '0') + "_100_100_0_0_0_200_200_7");
  EXPECT_EQ(parsed.fault, "lens offset: the text is too long");
}

TEST(LensModelTest, RefusesTheTextCutAnywhere) {
  for (std::size_t cut = 0; cut + 2 < kStraight.size(); ++cut) {
    const auto parsed = parseLensModel(std::string_view(kStraight).substr(0, cut));
    EXPECT_FALSE(parsed.model) << "cut at " << cut;
    EXPECT_NE(parsed.fault, "") << "cut at " << cut;
  }
}

}  // namespace
}  // namespace zel::render

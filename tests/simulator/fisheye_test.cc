#include "simulator/fisheye.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/simulator/pixels.h"

namespace zel::simulator {
namespace {

using testing::ElementsAre;

// One pixel a degree; the middle pixel of each circle looks straight forward or backward.
const LensOffset kStraight{.width = 394,
                           .height = 197,
                           .model = kEquidistant195,
                           .lenses = {{{.radius = 97.5, .centreX = 98.5, .centreY = 98.5},
                                       {.radius = 97.5, .centreX = 295.5, .centreY = 98.5, .yaw = 180}}}};
constexpr int kMiddleOfFront = 98, kMiddleOfBack = 295, kLevel = 98;  // the pixels in the middle

constexpr std::uint8_t blueOf(int column) { return column == 160 ? 200 : column == 255 ? 60 : column == 0 ? 160 : 0; }

// A scene whose red is the column and whose green is the row. Blue are column 160 and those at the edges.
Picture ramps() {
  Picture scene = blackPicture(256, 128);
  for (int y = 0; y < 128; ++y) {
    for (int x = 0; x < 256; ++x)
      setPixel(scene, x, y, static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), blueOf(x));
  }
  return scene;
}

class FisheyeProjectorTest : public testing::Test {
 protected:
  const Picture projected_ = FisheyeProjector(kStraight, 394, 197, 256, 128).project(ramps());
};

TEST_F(FisheyeProjectorTest, ShowsForwardInTheMiddleOfTheFirstCircle) {
  // Between the columns 127 and 128 and the rows 63 and 64; halves are rounded up.
  EXPECT_THAT(pixel(projected_, kMiddleOfFront, kLevel), ElementsAre(128, 64, 0));
}

TEST_F(FisheyeProjectorTest, ShowsWhatIsToTheRightOnTheRight) {
  // 45 degrees: 256 * 5/8 = 160, between the columns 159 and 160.
  EXPECT_THAT(pixel(projected_, kMiddleOfFront + 45, kLevel), ElementsAre(160, 64, 100));
  EXPECT_THAT(pixel(projected_, kMiddleOfFront - 45, kLevel), ElementsAre(96, 64, 0));
}

TEST_F(FisheyeProjectorTest, ShowsWhatIsAboveAtTheTop) {
  // 45 degrees: 128 / 4 = 32, between the rows 31 and 32.
  EXPECT_THAT(pixel(projected_, kMiddleOfFront, kLevel - 45), ElementsAre(128, 32, 0));
  EXPECT_THAT(pixel(projected_, kMiddleOfFront, kLevel + 45), ElementsAre(128, 96, 0));
}

TEST_F(FisheyeProjectorTest, BlendsNeighboursByTheirDistance) {
  EXPECT_EQ(pixel(projected_, kMiddleOfFront + 46, kLevel)[2], 158);  // at 160.211: 202/256 of column 160
  EXPECT_EQ(pixel(projected_, kMiddleOfFront + 47, kLevel)[2], 16);   // at 160.922:  20/256
}

TEST_F(FisheyeProjectorTest, JoinsTheEdgesOfTheSceneBehind) {
  EXPECT_THAT(pixel(projected_, kMiddleOfBack, kLevel), ElementsAre(128, 64, 110));  // half of 255 and half of 0
}

TEST_F(FisheyeProjectorTest, JoinsTheEdgesOnTheLeftEdgeToo) {
  LensOffset offset = kStraight;
  offset.lenses[1].yaw = 180.5;  // column 0.356 - 0.5: 219/256 of column 0 and 37/256 of column 255
  const Picture picture = FisheyeProjector(offset, 394, 197, 256, 128).project(ramps());
  EXPECT_EQ(pixel(picture, kMiddleOfBack, kLevel)[2], 146);
}

TEST_F(FisheyeProjectorTest, FillsThePictureWhenACircleIsLarger) {
  const LensOffset offset{.width = 12, .height = 6, .model = 0, .lenses = {{{.radius = 50}, {.radius = 50}}}};
  EXPECT_EQ(FisheyeProjector(offset, 12, 6, 64, 32).project(plainPicture(64, 32, 255)), plainPicture(12, 6, 255));
}

TEST_F(FisheyeProjectorTest, ShowsTheRightOnTheLeftOfTheSecondCircle) {
  EXPECT_THAT(pixel(projected_, kMiddleOfBack - 45, kLevel), ElementsAre(224, 64, 0));  // longitude 135: 256 * 7/8
}

TEST_F(FisheyeProjectorTest, IsBlackExactlyOutsideTheCircles) {
  const Picture picture = FisheyeProjector(factoryLensOffset(), 304, 152, 64, 32).project(plainPicture(64, 32, 255));
  ASSERT_EQ(picture.rgb.size(), 304u * 152u * 3u);
  for (int y = 0; y < 152; ++y) {
    for (int x = 0; x < 304; ++x) {
      const double aside = x < 152 ? x + 0.5 - 76 : x + 0.5 - 228, below = y + 0.5 - 76;
      const int expected = aside * aside + below * below <= 75 * 75 ? 255 : 0;
      ASSERT_THAT(pixel(picture, x, y), ElementsAre(expected, expected, expected)) << x << ", " << y;
    }
  }
}

TEST_F(FisheyeProjectorTest, StretchesTheCirclesToTheSizeOfThePicture) {
  const Picture picture = FisheyeProjector(factoryLensOffset(), 608, 152, 64, 32).project(plainPicture(64, 32, 255));
  // Centre 152, radii 150 and 75.
  EXPECT_THAT(pixel(picture, 2, 76), ElementsAre(255, 255, 255));
  EXPECT_THAT(pixel(picture, 1, 76), ElementsAre(0, 0, 0));
  EXPECT_THAT(pixel(picture, 152, 1), ElementsAre(255, 255, 255));
  EXPECT_THAT(pixel(picture, 152, 0), ElementsAre(0, 0, 0));
}

TEST_F(FisheyeProjectorTest, ShowsNothingOfASceneOfAnotherSize) {
  const FisheyeProjector projector(factoryLensOffset(), 304, 152, 64, 32);
  EXPECT_EQ(projector.project(plainPicture(32, 64, 255)), blackPicture(304, 152));
}

TEST_F(FisheyeProjectorTest, ShowsNothingThroughLensesWithoutSize) {
  const FisheyeProjector projector(LensOffset{}, 304, 152, 64, 32);
  EXPECT_EQ(projector.project(plainPicture(64, 32, 255)), blackPicture(304, 152));
}

}  // namespace
}  // namespace zel::simulator

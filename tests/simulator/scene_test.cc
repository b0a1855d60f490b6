#include "simulator/scene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/simulator/pixels.h"

namespace zel::simulator {
namespace {

using testing::ElementsAre;

constexpr int kForward = 960, kRight = 1440, kBackward = 0, kLeft = 480;  // columns
constexpr int kHorizon = 480, kClockRow = 424, kAbove = 360;              // rows; kAbove is 22.5 degrees up

// One glyph of a clock whose middle is at a column. Dots are 3 pixels high and 3.05 wide.
std::string glyphOf(const Picture& picture, int middle, int index) {
  std::string dots;
  for (int row = 0; row < 7; ++row) {
    for (int column = 0; column < 5; ++column) {
      const int x = static_cast<int>(middle + 3.051 * (6 * (index - 6) + column + 0.5));
      dots += pixel(picture, x % 1920, 412 + 3 * row + 1)[0] > 128 ? '#' : '.';
    }
    dots += '\n';
  }
  return dots;
}

class SceneTest : public testing::Test {
 protected:
  static Picture at(double seconds) {
    static const Scene scene(1920, 960);
    return scene.at(seconds);
  }

  static bool discIsAt(double seconds, int column) { return pixel(at(seconds), column, kHorizon) == Rgb{255, 226, 84}; }

  static void expectLamps(double seconds, const Rgb& colour) {
    EXPECT_EQ(pixel(at(seconds), kForward + 128, kClockRow), colour) << seconds;
    EXPECT_EQ(pixel(at(seconds), kBackward + 128, kClockRow), colour) << seconds;
  }
};

TEST_F(SceneTest, TellsTheTimeOfDayInMilliseconds) {
  EXPECT_EQ(clockText(0), "00:00:00.000");
  EXPECT_EQ(clockText(1.001), "00:00:01.001");
  EXPECT_EQ(clockText(0.0019), "00:00:00.001");
  EXPECT_EQ(clockText(3723.05), "01:02:03.050");
  EXPECT_EQ(clockText(86399.999), "23:59:59.999");
  EXPECT_EQ(clockText(86400), "00:00:00.000");
  EXPECT_EQ(clockText(-0.001), "23:59:59.999");
  EXPECT_EQ(clockText(std::numeric_limits<double>::infinity()), "00:00:00.000");
}

TEST_F(SceneTest, ShowsEachAxisInItsColour) {
  const Picture picture = at(0.5);
  EXPECT_THAT(pixel(picture, kForward, kAbove), ElementsAre(214, 40, 40));
  EXPECT_THAT(pixel(picture, kRight, kAbove), ElementsAre(30, 140, 60));
  EXPECT_THAT(pixel(picture, kBackward, kAbove), ElementsAre(40, 70, 200));
  EXPECT_THAT(pixel(picture, kLeft, kAbove), ElementsAre(200, 130, 0));
}

TEST_F(SceneTest, HasTheSkyAboveTheGround) {
  const Picture picture = at(0.5);
  const Rgb sky = pixel(picture, 1000, 200), ground = pixel(picture, 1000, 760);
  EXPECT_GT(sky[2], sky[0] + 50);
  EXPECT_GT(ground[1], ground[2] + 10);
}

TEST_F(SceneTest, ShowsTheSameTimeForwardAndBackward) {
  const Picture picture = at(1.25);
  const std::string one =
      "..#..\n"
      ".##..\n"
      "..#..\n"
      "..#..\n"
      "..#..\n"
      "..#..\n"
      ".###.\n";
  EXPECT_EQ(glyphOf(picture, 960, 7), one);  // 00:00:01.250
  EXPECT_EQ(glyphOf(picture, 1920, 7), one);
}

TEST_F(SceneTest, ShowsTheMilliseconds) {
  const Picture picture = at(1.25);
  EXPECT_EQ(glyphOf(picture, 960, 8),
            ".....\n"
            ".....\n"
            ".....\n"
            ".....\n"
            ".....\n"
            "..##.\n"
            "..##.\n");
  EXPECT_EQ(glyphOf(picture, 960, 9),
            ".###.\n"
            "#...#\n"
            "....#\n"
            "..##.\n"
            ".#...\n"
            "#....\n"
            "#####\n");
}

TEST_F(SceneTest, LightsTheLampsForTheFirstTenthOfEachSecond) {
  const Rgb lit{255, 60, 40}, dark{58, 20, 20};
  expectLamps(0, lit);
  expectLamps(0.099, lit);
  expectLamps(0.1, dark);
  expectLamps(0.999, dark);
  expectLamps(7, lit);
}

TEST_F(SceneTest, SendsTheDiscRoundTheHorizonInEightSeconds) {
  EXPECT_TRUE(discIsAt(0, kForward));
  EXPECT_TRUE(discIsAt(2, kRight));
  EXPECT_TRUE(discIsAt(4, kBackward));
  EXPECT_TRUE(discIsAt(4, 1919));
  EXPECT_TRUE(discIsAt(6, kLeft));
  EXPECT_TRUE(discIsAt(8, kForward));
  EXPECT_TRUE(discIsAt(-2, kLeft));
  EXPECT_FALSE(discIsAt(2, kForward));
  EXPECT_FALSE(discIsAt(0, kRight));
}

TEST_F(SceneTest, ShowsTheDiscInADarkRing) {
  const Picture picture = at(2);
  EXPECT_THAT(pixel(picture, kRight + 20, kHorizon), ElementsAre(255, 226, 84));  // 3.8 degrees
  EXPECT_THAT(pixel(picture, kRight + 23, kHorizon), ElementsAre(14, 14, 18));    // 4.4 degrees
  EXPECT_THAT(pixel(picture, kRight, kHorizon - 24), ElementsAre(14, 14, 18));
  EXPECT_NE(pixel(picture, kRight + 28, kHorizon), (Rgb{14, 14, 18}));  // 5.3 degrees
}

TEST_F(SceneTest, NamesTheDiscsPlace) {
  EXPECT_DOUBLE_EQ(discLongitude(0), 0);
  EXPECT_DOUBLE_EQ(discLongitude(1), 45);
  EXPECT_DOUBLE_EQ(discLongitude(6), -90);
  EXPECT_DOUBLE_EQ(discLongitude(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST_F(SceneTest, MovesNothingAwayFromTheClocksAndTheHorizon) {
  const Picture before = at(0.2), after = at(1.7);
  EXPECT_NE(before, after);
  for (int y = 0; y < 960; ++y) {
    if (y >= 408 && y < 512) continue;  // 13.5 to -6 degrees
    for (int x = 0; x < 1920; ++x) ASSERT_EQ(pixel(before, x, y), pixel(after, x, y)) << x << ", " << y;
  }
}

TEST_F(SceneTest, IsTheSameAtTheSameTime) { EXPECT_EQ(at(12.345), at(12.345)); }

TEST_F(SceneTest, FitsEvenTheSmallestPicture) {
  for (const int size : {1, 2, 7}) EXPECT_EQ(Scene(2 * size, size).at(4).rgb.size(), byteCount(2 * size, size));
}

}  // namespace
}  // namespace zel::simulator

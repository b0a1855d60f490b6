#include "simulator/lens_offset.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/link/bytes.h"
#include "tests/simulator/lens_points.h"

namespace zel::simulator {
namespace {

using zel::test::bytes;

constexpr double kNearly = 1e-9;

const Lens kStraightLens{.radius = 750, .centreX = 760, .centreY = 760};

Lens turned(double yaw, double pitch, double roll) {
  Lens lens = kStraightLens;
  lens.yaw = yaw;
  lens.pitch = pitch;
  lens.roll = roll;
  return lens;
}

void expectPoint(const Lens& lens, Direction world, double x, double y) {
  const Point point = pointOf(lens, kEquidistant195, world);
  EXPECT_NEAR(point.x, x, kNearly);
  EXPECT_NEAR(point.y, y, kNearly);
}

void expectDirection(const LensProjection& lens, Point point, Direction expected) {
  const auto direction = lens.directionOf(point);
  ASSERT_TRUE(direction.has_value());
  EXPECT_NEAR(direction->x, expected.x, kNearly);
  EXPECT_NEAR(direction->y, expected.y, kNearly);
  EXPECT_NEAR(direction->z, expected.z, kNearly);
}

TEST(LensOffsetTest, WritesTheFactoryRecord) {
  EXPECT_EQ(lensOffsetRecord(factoryLensOffset()), bytes({
                                                       0xE0, 0x0B,                          // 3040
                                                       0xF0, 0x05,                          // 1520
                                                       7,    0,    0,    0,                 // model
                                                       2,    0,    0,    0,    0, 0, 0, 0,  // lens count, reserved
                                                       0xB0, 0x71, 0x0B, 0,                 // 750 000
                                                       0xC0, 0x98, 0x0B, 0,                 // 760 000
                                                       0xC0, 0x98, 0x0B, 0,                 // 760 000
                                                       0,    0,    0,    0,                 // yaw
                                                       0x2C, 0x01, 0,    0,                 // 300
                                                       0x70, 0xFE, 0xFF, 0xFF,              // -400
                                                       0,    0,    0,    0,    0, 0, 0, 0,  // reserved
                                                       0xB0, 0x71, 0x0B, 0,                 // 750 000
                                                       0x40, 0xCA, 0x22, 0,                 // 2 280 000
                                                       0xC0, 0x98, 0x0B, 0,                 // 760 000
                                                       0x58, 0xBE, 0x02, 0,                 // 179 800
                                                       0x38, 0xFF, 0xFF, 0xFF,              // -200
                                                       0xF4, 0x01, 0,    0,                 // 500
                                                       0,    0,    0,    0,    0, 0, 0, 0,  // reserved
                                                   }));
}

TEST(LensOffsetTest, TakesEveryModelButSevenForTheWideOne) {
  EXPECT_EQ(fieldOfView(7), 195);
  EXPECT_EQ(fieldOfView(0), 200);
  EXPECT_EQ(fieldOfView(4711), 200);
}

TEST(LensProjectionTest, ShowsItsAxisInTheMiddleOfTheCircle) {
  expectPoint(kStraightLens, {0, 0, 1}, 760, 760);
  expectPoint(turned(90, 0, 0), {1, 0, 0}, 760, 760);
  expectPoint(turned(-90, 0, 0), {-1, 0, 0}, 760, 760);
  expectPoint(turned(0, 90, 0), {0, -1, 0}, 760, 760);
  expectPoint(turned(0, 0, 33), {0, 0, 1}, 760, 760);
}

TEST(LensProjectionTest, TurnsByYawBeforePitch) {
  expectPoint(turned(90, 30, 0), {0.8660254037844386, -0.5, 0}, 760, 760);
}

TEST(LensProjectionTest, ShowsHalfOfTheFieldOfViewOnTheRim) {
  expectPoint(kStraightLens, directionAt(97.5, 0), 1510, 760);
  expectPoint(kStraightLens, directionAt(-97.5, 0), 10, 760);
  const Point wide = pointOf(kStraightLens, 0, directionAt(100, 0));
  EXPECT_NEAR(wide.x, 1510, kNearly);
}

TEST(LensProjectionTest, ShowsUpAtTheTop) {
  expectPoint(kStraightLens, directionAt(0, 39), 760, 460);  // 750 * 39 / 97.5 = 300
}

TEST(LensProjectionTest, ShowsTheRightOnTheLeftWhenItLooksBack) {
  expectPoint(turned(180, 0, 0), directionAt(141, 0), 460, 760);  // 39 degrees from its axis
}

TEST(LensProjectionTest, ShowsWhatIsBelowOnTheRightWhenItsRightIsRolledDown) {
  expectPoint(turned(0, 0, 90), directionAt(0, -39), 1060, 760);
}

TEST(LensProjectionTest, ShowsWhatIsAboveNearerWhenItIsPitchedUp) {
  expectPoint(turned(0, 13, 0), directionAt(0, 39), 760, 560);  // 750 * 26 / 97.5 = 200
}

TEST(LensProjectionTest, FindsTheDirectionOfAPoint) {
  const LensProjection straight(kStraightLens, kEquidistant195), rolled(turned(0, 0, 90), kEquidistant195);
  const LensProjection backward(turned(180, 0, 0), kEquidistant195);
  expectDirection(straight, {760, 760}, {0, 0, 1});
  expectDirection(straight, {990.7692307692307, 760}, {0.5, 0, 0.8660254037844386});  // 30 degrees
  expectDirection(rolled, {990.7692307692307, 760}, {0, 0.5, 0.8660254037844386});
  expectDirection(backward, {990.7692307692307, 760}, {-0.5, 0, -0.8660254037844386});
}

TEST(LensProjectionTest, LeadsBackToWhereItCameFrom) {
  const Lens skewed = turned(179.8, -20, 35);
  const Point from{500, 1100};
  const auto direction = LensProjection(skewed, kEquidistant195).directionOf(from);
  ASSERT_TRUE(direction.has_value());
  const Point back = pointOf(skewed, kEquidistant195, *direction);
  EXPECT_NEAR(back.x, from.x, kNearly);
  EXPECT_NEAR(back.y, from.y, kNearly);
}

TEST(LensProjectionTest, SeesNothingOutsideTheCircle) {
  const LensProjection lens(kStraightLens, kEquidistant195);
  EXPECT_TRUE(lens.directionOf({1509.999, 760}).has_value());
  EXPECT_FALSE(lens.directionOf({1510.001, 760}).has_value());
}

TEST(SphereTest, ShowsForwardInTheMiddleAndRightAtThreeQuarters) {
  const Point forward = equirectangularPoint({0, 0, 1}, 1920, 960), right = equirectangularPoint({1, 0, 0}, 1920, 960);
  EXPECT_NEAR(forward.x, 960, kNearly);
  EXPECT_NEAR(forward.y, 480, kNearly);
  EXPECT_NEAR(right.x, 1440, kNearly);
  EXPECT_NEAR(equirectangularPoint({0, -1, 0}, 1920, 960).y, 0, kNearly);
  EXPECT_NEAR(equirectangularPoint({0, 1, 0}, 1920, 960).y, 960, kNearly);
}

}  // namespace
}  // namespace zel::simulator

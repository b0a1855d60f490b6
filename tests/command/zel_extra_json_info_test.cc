#include <ZELTarkaSDK/ZELExtraJsonInfo.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zel::test {
namespace {

TEST(ZELExtraJsonInfoTest, CopiesThePlaceUnchanged) {
  const auto gps = ZELMediaGps::initWithLatitude(48.25, -11.5, 519);
  EXPECT_EQ(gps->getGpsData(), (ZELGpsData{48.25, -11.5, 519.0}));
}

TEST(ZELExtraJsonInfoTest, RoundsTheGyroToTheNearestFloat) {
  ZELMediaGyro gyro;
  gyro.setAx(0.1);
  gyro.setGz(16777217.0);  // halfway between two floats
  EXPECT_EQ(gyro.getGyroData(), (ZELGyroData{0.1f, 0.f, 0.f, 0.f, 0.f, 16777216.f}));
}

TEST(ZELExtraJsonInfoTest, MakesAGyroValueBeyondAFloatInfinite) {
  ZELMediaGyro gyro;
  gyro.setAy(1e39);
  gyro.setGx(-1e300);
  EXPECT_EQ(float{gyro.getGyroData().ay}, std::numeric_limits<float>::infinity());
  EXPECT_EQ(float{gyro.getGyroData().gx}, -std::numeric_limits<float>::infinity());
}

TEST(ZELExtraJsonInfoTest, CutsTheFractionOfAnOrientation) {
  const auto orientation = ZELMediaOrientation::initWithX(2.9, -2.9, 0.5, -0.5);
  EXPECT_EQ(orientation->getOrientationData(), (ZELOrientationData{2, -2, 0, 0}));
}

TEST(ZELExtraJsonInfoTest, TakesTheNearestOrientationThatFits) {
  const auto orientation = ZELMediaOrientation::initWithX(2147483648.0, -2147483649.0,
                                                          std::numeric_limits<double>::infinity(), std::nan(""));
  EXPECT_EQ(orientation->getOrientationData(), (ZELOrientationData{2147483647, -2147483647 - 1, 2147483647, 0}));
}

TEST(ZELExtraJsonInfoTest, GivesNothingOfAnEmptyRecordButItsOffsetText) {
  const auto info = ZELExtraJsonInfo::initWithVideoMnd({});
  EXPECT_EQ(info->offset(), "0_(null)_0_0_0");
  EXPECT_EQ(info->gps()->getGpsData(), ZELGpsData{});
  EXPECT_EQ(info->gyro()->getGyroData(), ZELGyroData{});
  EXPECT_EQ(info->orientation()->getOrientationData(), ZELOrientationData{});
}

TEST(ZELExtraJsonInfoTest, TakesEveryPartOfAVideosRecord) {
  ZELVideoMnd record;
  record.head[0] = 9;
  record.value = 9;
  record.tail[31] = 9;
  record.offset.lensCount = 1;
  record.offset.lenses[0].p[0] = 1500;
  record.gps = {1.5, 2.5, 3.5};
  record.gyro = {1.f, 2.f, 3.f, 4.f, 5.f, 6.5f};
  record.orientation = {1, -2, 3, -2147483647 - 1};
  const auto info = ZELExtraJsonInfo::initWithVideoMnd(record);
  EXPECT_EQ(info->offset(), "1_1.500_0.000_0.000_0.000_0.000_0.000_0_0_0");
  EXPECT_EQ(info->gps()->latitude(), 1.5);
  EXPECT_EQ(info->gps()->longitude(), 2.5);
  EXPECT_EQ(info->gps()->altitude(), 3.5);
  EXPECT_EQ(info->gyro()->ax(), 1.0);
  EXPECT_EQ(info->gyro()->ay(), 2.0);
  EXPECT_EQ(info->gyro()->az(), 3.0);
  EXPECT_EQ(info->gyro()->gx(), 4.0);
  EXPECT_EQ(info->gyro()->gy(), 5.0);
  EXPECT_EQ(info->gyro()->gz(), 6.5);
  EXPECT_EQ(info->orientation()->x(), 1.0);
  EXPECT_EQ(info->orientation()->y(), -2.0);
  EXPECT_EQ(info->orientation()->z(), 3.0);
  EXPECT_EQ(info->orientation()->w(), -2147483648.0);
}

}  // namespace
}  // namespace zel::test

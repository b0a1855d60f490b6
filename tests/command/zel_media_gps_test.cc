#include <ZELTarkaSDK/ZELMediaGps.h>

#include <gtest/gtest.h>

namespace zel::test {
namespace {

TEST(ZELMediaGpsTest, IsZeroUntilItIsSet) { EXPECT_EQ(ZELMediaGps().getGpsData(), ZELGpsData{}); }

TEST(ZELMediaGpsTest, KeepsEachValueUnderItsOwnName) {
  ZELMediaGps gps;
  gps.setLatitude(1.5);
  gps.setLongitude(2.5);
  gps.setAltitude(3.5);
  EXPECT_EQ(gps.latitude(), 1.5);
  EXPECT_EQ(gps.longitude(), 2.5);
  EXPECT_EQ(gps.altitude(), 3.5);
  EXPECT_EQ(gps.getGpsData(), (ZELGpsData{1.5, 2.5, 3.5}));
}

}  // namespace
}  // namespace zel::test

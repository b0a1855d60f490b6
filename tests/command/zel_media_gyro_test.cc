#include <ZELTarkaSDK/ZELMediaGyro.h>

#include <gtest/gtest.h>

namespace zel::test {
namespace {

TEST(ZELMediaGyroTest, IsAtRestUntilItIsSet) { EXPECT_EQ(ZELMediaGyro().getGyroData(), ZELGyroData{}); }

TEST(ZELMediaGyroTest, KeepsEachValueUnderItsOwnName) {
  ZELMediaGyro gyro;
  gyro.setAx(1.5);
  gyro.setAy(2.5);
  gyro.setAz(3.5);
  gyro.setGx(4.5);
  gyro.setGy(5.5);
  gyro.setGz(6.5);
  EXPECT_EQ(gyro.ax(), 1.5);
  EXPECT_EQ(gyro.ay(), 2.5);
  EXPECT_EQ(gyro.az(), 3.5);
  EXPECT_EQ(gyro.gx(), 4.5);
  EXPECT_EQ(gyro.gy(), 5.5);
  EXPECT_EQ(gyro.gz(), 6.5);
  EXPECT_EQ(gyro.getGyroData(), (ZELGyroData{1.5f, 2.5f, 3.5f, 4.5f, 5.5f, 6.5f}));
}

TEST(ZELMediaGyroTest, TakesTheCamerasRecordInItsOrder) {
  const auto gyro = ZELMediaGyro::initWithGyroData({1.f, 2.f, 3.f, 4.f, 5.f, 6.f});
  EXPECT_EQ(gyro->ax(), 1.0);
  EXPECT_EQ(gyro->ay(), 2.0);
  EXPECT_EQ(gyro->az(), 3.0);
  EXPECT_EQ(gyro->gx(), 4.0);
  EXPECT_EQ(gyro->gy(), 5.0);
  EXPECT_EQ(gyro->gz(), 6.0);
}

}  // namespace
}  // namespace zel::test

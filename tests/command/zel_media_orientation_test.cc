#include <ZELTarkaSDK/ZELMediaOrientation.h>

#include <gtest/gtest.h>

namespace zel::test {
namespace {

TEST(ZELMediaOrientationTest, IsZeroUntilItIsSet) {
  const ZELMediaOrientation orientation;
  EXPECT_EQ(orientation.x(), 0.0);
  EXPECT_EQ(orientation.y(), 0.0);
  EXPECT_EQ(orientation.z(), 0.0);
  EXPECT_EQ(orientation.w(), 0.0);
}

TEST(ZELMediaOrientationTest, KeepsEachValueUnderItsOwnName) {
  ZELMediaOrientation orientation;
  orientation.setX(1);
  orientation.setY(2);
  orientation.setZ(3);
  orientation.setW(4);
  EXPECT_EQ(orientation.x(), 1.0);
  EXPECT_EQ(orientation.y(), 2.0);
  EXPECT_EQ(orientation.z(), 3.0);
  EXPECT_EQ(orientation.w(), 4.0);
  EXPECT_EQ(orientation.getOrientationData(), (ZELOrientationData{1, 2, 3, 4}));
}

TEST(ZELMediaOrientationTest, BeginsWithWhatItIsGiven) {
  const auto orientation = ZELMediaOrientation::initWithX(1, 2, 3, 4);
  EXPECT_EQ(orientation->getOrientationData(), (ZELOrientationData{1, 2, 3, 4}));
}

}  // namespace
}  // namespace zel::test

#include "gateway/cameras/held_status.h"

#include <gtest/gtest.h>

namespace zel::gateway {
namespace {

TEST(CameraStatusTest, IsThatOfTheLinkAndTheBus) {
  EXPECT_EQ(cameraStatusOf(LinkStatus::closed, false), CameraStatus::absent);
  EXPECT_EQ(cameraStatusOf(LinkStatus::closed, true), CameraStatus::opening);
  EXPECT_EQ(cameraStatusOf(LinkStatus::open, true), CameraStatus::opening);
  EXPECT_EQ(cameraStatusOf(LinkStatus::flowing, true), CameraStatus::streaming);
  EXPECT_EQ(cameraStatusOf(LinkStatus::silent, true), CameraStatus::silent);
}

TEST(CameraStatusTest, HasTheWordsOfTheInterface) {
  EXPECT_EQ(toString(CameraStatus::absent), "absent");
  EXPECT_EQ(toString(CameraStatus::opening), "opening");
  EXPECT_EQ(toString(CameraStatus::streaming), "streaming");
  EXPECT_EQ(toString(CameraStatus::silent), "silent");
}

}  // namespace
}  // namespace zel::gateway

#include "platform/ffmpeg/owed_pictures.h"

#include <gtest/gtest.h>

namespace zel::platform {
namespace {

class OwedPicturesTest : public testing::Test {
 protected:
  OwedPicturesTest() {
    for (const int time : {0, 33, 67, 100}) owed.add(time);
  }
  OwedPictures owed;
};

// Decoded I0 P3 b1 b2, shown I0 b1 b2 P3.
TEST_F(OwedPicturesTest, ReorderedPicturesGetTheTimesInTheOrderInWhichTheyCame) {
  EXPECT_EQ(owed.take(0, true), 0);
  EXPECT_EQ(owed.take(67, true), 33);
  EXPECT_EQ(owed.take(100, true), 67);
  EXPECT_EQ(owed.take(33, true), 100);
}

TEST_F(OwedPicturesTest, OthersKeepTheirOwnAndThoseBeforeThemAreLost) {
  EXPECT_EQ(owed.take(67, false), 67);
  EXPECT_FALSE(owed.loseBeyond(1));
  EXPECT_EQ(owed.take(100, false), 100);
  EXPECT_FALSE(owed.loseBeyond(0));
}

TEST_F(OwedPicturesTest, TheOldestIsLostWhereMoreAreOwedThanCanBeHeldBack) {
  EXPECT_FALSE(owed.loseBeyond(4));
  EXPECT_TRUE(owed.loseBeyond(3));
  EXPECT_EQ(owed.take(67, true), 33);
}

TEST_F(OwedPicturesTest, ThatWhichFailedAtOnceIsTheNewest) {
  owed.dropNewest();
  EXPECT_FALSE(owed.loseBeyond(3));
  EXPECT_EQ(owed.take(67, false), 67);
  owed.clear();
  owed.dropNewest();
  EXPECT_EQ(owed.take(5, true), 5);
}

}  // namespace
}  // namespace zel::platform

#include "outputs/paced_times.h"

#include <gtest/gtest.h>

namespace zel {
namespace {

constexpr double kFrame = 1024.0 / 48;  // milliseconds: 21.33

class PacedTimesTest : public testing::Test {
 protected:
  double picture() { return times.picture(*times.now()); }
  PacedTimes times{10};  // a picture takes 100 ms
};

TEST_F(PacedTimesTest, SoundRunsByItsSamples) {
  EXPECT_EQ(times.sound(5000), 5000);
  EXPECT_DOUBLE_EQ(times.sound(5021), 5000 + kFrame);
  EXPECT_DOUBLE_EQ(times.sound(9999), 5000 + 2 * kFrame);  // what the player's clock says does not count
}

TEST_F(PacedTimesTest, ARateOfItsOwnIsFollowed) {
  times.setSoundRate(32000);
  times.sound(100);
  EXPECT_DOUBLE_EQ(times.sound(0), 132);
}

TEST_F(PacedTimesTest, NothingIsKnownBeforeTheFirstSound) {
  EXPECT_FALSE(times.now());
  times.sound(100);
  EXPECT_DOUBLE_EQ(*times.now(), 100 + kFrame / 2);
}

TEST_F(PacedTimesTest, TheSecondPictureIsTheMeanOfWhatBothSay) {
  EXPECT_DOUBLE_EQ(times.picture(1000), 1000);
  EXPECT_DOUBLE_EQ(times.picture(1120), 1110);  // 1100 by the first, 1120 by itself
}

// Each comes 0 to 21 ms behind a frame of sound; together they tell more than any of them.
TEST_F(PacedTimesTest, PicturesThatComeEvenlyGetEvenTimes) {
  double sound = times.sound(1000), last = 0;
  for (int number = 0; number < 100; ++number) {
    const double taken = 1005 + 100.0 * number;
    while (sound + kFrame <= taken) sound = times.sound(0);
    last = picture();
    if (number < 20) continue;
    EXPECT_NEAR(last, taken, 4) << number;
  }
}

TEST_F(PacedTimesTest, PicturesThatAreMissingLeaveAGap) {
  times.picture(1000);
  EXPECT_DOUBLE_EQ(times.picture(1401), 1401);  // 301 ms behind its place
}

TEST_F(PacedTimesTest, PicturesGoOnWhereSoundStandsStill) {
  times.sound(1000);
  const double stands = *times.now();
  double last = times.picture(stands);
  for (int i = 0; i < 20; ++i) last = times.picture(stands);
  EXPECT_GT(last, stands + 1500);
  EXPECT_DOUBLE_EQ(times.sound(1021), last);  // and sound goes on beside them
}

}  // namespace
}  // namespace zel

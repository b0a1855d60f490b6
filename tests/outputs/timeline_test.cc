#include "outputs/timeline.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace zel {
namespace {

class TimelineTest : public testing::Test {
 protected:
  Timeline timeline{48000};  // a frame of sound is 21333 1/3 us
};

TEST_F(TimelineTest, BeginsWithTheFirstKeyPicture) {
  EXPECT_EQ(timeline.audio(90), std::nullopt);
  EXPECT_EQ(timeline.video(95, false), std::nullopt);
  EXPECT_EQ(timeline.video(100, true), 0);
  EXPECT_EQ(timeline.audio(99), std::nullopt);
  EXPECT_EQ(timeline.audio(110), 10'000);
  EXPECT_EQ(timeline.video(133, false), 33'000);
}

TEST_F(TimelineTest, TellsWhereAPictureBelongsBeforeItIsPlaced) {
  EXPECT_EQ(timeline.pictureAt(100), std::nullopt);
  timeline.video(100, true);
  EXPECT_EQ(timeline.pictureAt(99), std::nullopt);
  EXPECT_EQ(timeline.pictureAt(100), 0);
  EXPECT_EQ(timeline.pictureAt(133), 33'000);
  EXPECT_EQ(timeline.video(133, false), 33'000);
  EXPECT_EQ(timeline.pictureAt(133), 33'000);
}

TEST_F(TimelineTest, APictureOfTheRunBeforeOrOfAnotherClockBelongsNowhere) {
  timeline.video(10'000, true);
  timeline.video(10'033, false);
  EXPECT_EQ(timeline.pictureAt(10'033 + 3'600'000), 3'600'033'000);
  EXPECT_EQ(timeline.pictureAt(10'033 + 3'600'001), std::nullopt);
  EXPECT_EQ(timeline.pictureAt((std::int64_t{1} << 50) + 1), std::nullopt);
  timeline.beginRun();
  EXPECT_EQ(timeline.pictureAt(10'066), std::nullopt);
  timeline.video(20'000, true);
  EXPECT_EQ(timeline.pictureAt(19'999), std::nullopt);
  EXPECT_EQ(timeline.pictureAt(20'000), 66'000);
  timeline.video(22'000, false);
  EXPECT_EQ(timeline.pictureAt(21'000), 1'066'000);
  EXPECT_EQ(timeline.pictureAt(20'999), std::nullopt);
}

TEST_F(TimelineTest, PicturesNeverGoBackwards) {
  timeline.video(100, true);
  EXPECT_EQ(timeline.video(133, false), 33'000);
  EXPECT_EQ(timeline.video(133, false), 34'000);
  EXPECT_EQ(timeline.video(120, false), 35'000);
  EXPECT_EQ(timeline.video(166, false), 66'000);
}

TEST_F(TimelineTest, SoundAtTheCamerasPaceIsExactToTheSample) {
  timeline.video(0, true);
  EXPECT_EQ(timeline.audio(0), 0);
  EXPECT_EQ(timeline.audio(21), 21'333);
  EXPECT_EQ(timeline.audio(43), 42'666);
  EXPECT_EQ(timeline.audio(64), 64'000);
}

TEST_F(TimelineTest, ABreakInTheSoundIsKept) {
  timeline.video(0, true);
  timeline.audio(0);
  EXPECT_EQ(timeline.audio(24), 24'000);  // 2.7 ms later than expected
  EXPECT_EQ(timeline.audio(46), 45'333);  // and expected from there on
  EXPECT_EQ(timeline.audio(500), 500'000);
}

TEST_F(TimelineTest, SoundNeverGoesBackwards) {
  timeline.video(0, true);
  timeline.audio(100);
  EXPECT_EQ(timeline.audio(50), 101'000);
  EXPECT_EQ(timeline.audio(51), 102'000);
}

TEST_F(TimelineTest, AnotherRunGoesOnWhereTheFirstEnded) {
  timeline.video(1000, true);
  timeline.video(1033, false);
  timeline.audio(1020);
  timeline.beginRun();
  EXPECT_EQ(timeline.audio(5), std::nullopt);
  EXPECT_EQ(timeline.video(6, false), std::nullopt);
  EXPECT_EQ(timeline.video(7, true), 66'000);  // a picture's length after the last one
  EXPECT_EQ(timeline.audio(5), std::nullopt);  // sounds before it
  EXPECT_EQ(timeline.audio(10), 69'000);
}

TEST_F(TimelineTest, AnotherRunWaitsForTheSoundOfTheFirst) {
  timeline.video(0, true);
  timeline.audio(500);
  timeline.beginRun();
  EXPECT_EQ(timeline.video(7, true), 521'333);
}

TEST_F(TimelineTest, AClockThatIsSetBackIsFollowed) {
  timeline.video(10'000, true);
  timeline.video(10'033, false);
  timeline.audio(10'020);
  EXPECT_EQ(timeline.video(2'000, false), 66'000);
  EXPECT_EQ(timeline.video(2'033, false), 99'000);
  EXPECT_EQ(timeline.audio(2'010), 76'000);
}

TEST_F(TimelineTest, AClockThatIsSetAheadByYearsIsFollowed) {
  timeline.video(100, true);
  timeline.video(133, false);
  timeline.audio(120);
  EXPECT_EQ(timeline.audio(816'000'000'000), 53'000);
  EXPECT_EQ(timeline.video(166, false), 66'000);  // a picture is a time behind
  EXPECT_EQ(timeline.video(816'000'000'013, false), 99'000);
  EXPECT_EQ(timeline.video(816'000'000'046, false), 132'000);
}

TEST_F(TimelineTest, APauseOfAnHourStays) {
  timeline.video(0, true);
  EXPECT_EQ(timeline.video(3'600'000, true), 3'600'000'000);
}

TEST_F(TimelineTest, NonsenseIsLeftOut) {
  timeline.video(0, true);
  EXPECT_EQ(timeline.video(INT64_MAX, true), std::nullopt);
  EXPECT_EQ(timeline.video(INT64_MIN, true), std::nullopt);
  EXPECT_EQ(timeline.audio(INT64_MAX), std::nullopt);
  EXPECT_EQ(timeline.audio(INT64_MIN), std::nullopt);
  EXPECT_EQ(timeline.video(33, false), 33'000);
}

TEST_F(TimelineTest, ARunAndAClockThatIsSetAreBreaksOnBothTracksOnce) {
  timeline.video(1000, true), timeline.audio(1000);
  EXPECT_FALSE(timeline.takeBreak(Track::video));
  timeline.beginRun();
  timeline.video(5000, true), timeline.audio(5000);
  EXPECT_TRUE(timeline.takeBreak(Track::video));
  EXPECT_FALSE(timeline.takeBreak(Track::video));
  EXPECT_TRUE(timeline.takeBreak(Track::audio));
  timeline.video(816'000'000'000, false);
  EXPECT_TRUE(timeline.takeBreak(Track::video));
  EXPECT_TRUE(timeline.takeBreak(Track::audio));
}

}  // namespace
}  // namespace zel

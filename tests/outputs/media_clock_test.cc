#include "outputs/media_clock.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace zel {
namespace {

constexpr std::optional<std::int64_t> kSamePicture = std::nullopt;

class MediaClockTest : public testing::Test {
 protected:
  // The highest bit behind the header is that of macroblock 0.
  std::optional<std::int64_t> first(std::int64_t stamp) {
    return clock.slice(std::vector<std::uint8_t>{0, 0, 0, 1, 0x41, 0x80}, stamp);
  }
  std::optional<std::int64_t> next(std::int64_t stamp) {
    return clock.slice(std::vector<std::uint8_t>{0, 0, 0, 1, 0x41, 0x40}, stamp);
  }
  MediaClock clock;
};

// Pictures were taken at 100, 167 and 233; each is stamped when the one behind it has begun.
TEST_F(MediaClockTest, APictureOfOneSliceBearsTheTimeOfTheOneBehindIt) {
  clock.begin(190, 15);
  first(100);
  EXPECT_EQ(first(167), 100);
  EXPECT_EQ(first(233), 167);
  EXPECT_EQ(first(300), 233);
  EXPECT_EQ(clock.pictureOf(233).time, 167);
}

// Only the last slice of each is held back.
TEST_F(MediaClockTest, APictureOfSeveralSlicesBearsItsOwnTime) {
  clock.begin(192, 15);
  first(100), next(100), next(167);
  EXPECT_EQ(first(167), 167);
  EXPECT_EQ(next(167), kSamePicture);
  EXPECT_EQ(next(233), kSamePicture);
  EXPECT_EQ(first(233), 233);
  EXPECT_EQ(clock.pictureOf(167).time, 167);
  EXPECT_EQ(clock.pictureOf(233).time, 233);
}

TEST_F(MediaClockTest, APictureThatTheCameraLeftOutChangesNothing) {
  clock.begin(192, 30);
  first(100);
  EXPECT_EQ(first(200), 100);  // none at 133 and 167
  EXPECT_EQ(first(233), 200);
}

TEST_F(MediaClockTest, TellsHowFarTheStampOfTheNewestPictureLags) {
  clock.begin(192, 15);
  EXPECT_EQ(clock.lag(), 0);
  first(100);
  EXPECT_EQ(clock.lag(), 0);  // nothing tells its own time
  first(167);
  EXPECT_EQ(clock.lag(), 67);
  first(2000);
  EXPECT_EQ(clock.lag(), 0);  // more than a picture is: the clock was set
}

TEST_F(MediaClockTest, TellsWhenTheLastSliceOfAPictureCame) {
  const auto at = [](int second) { return MediaClock::TimePoint(std::chrono::seconds(second)); };
  const std::vector<std::uint8_t> begins{0, 0, 0, 1, 0x41, 0x80}, goesOn{0, 0, 0, 1, 0x41, 0x40};
  clock.begin(192, 30);
  clock.slice(begins, 100, at(1));
  clock.slice(goesOn, 133, at(2));
  clock.slice(begins, 133, at(3));
  EXPECT_EQ(clock.pictureOf(100).arrival, at(2));
  EXPECT_EQ(clock.pictureOf(133).arrival, at(3));
  const auto before = std::chrono::steady_clock::now();
  EXPECT_GE(clock.pictureOf(134).arrival, before);
}

TEST_F(MediaClockTest, ACameraClockThatIsSetMovesNoPictureBeforeIt) {
  clock.begin(192, 30);
  first(100);
  EXPECT_EQ(first(816'000'000'000), 100);
  EXPECT_EQ(first(816'000'000'033), 816'000'000'000);
}

TEST_F(MediaClockTest, AnyTimeIsHandedOn) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max(), kLeast = -kMost - 1;
  clock.begin(192, 30);
  EXPECT_EQ(first(kMost), kMost);
  EXPECT_EQ(first(kLeast), kMost);
  EXPECT_EQ(first(0), kLeast);
  EXPECT_EQ(clock.sound(kMost), kMost);
}

TEST_F(MediaClockTest, SoundOfACameraThatTellsTimesKeepsThem) {
  clock.begin(190, 15);
  EXPECT_EQ(clock.sound(100), 100);
  EXPECT_EQ(clock.sound(500), 500);
}

// A picture each 66.7 ms, a frame of sound each 21.3 ms, in the order in which they come. The player's stamps, which
// run ahead by a picture and are joined with those of the sound once a second, do not matter.
class OldCameraTest : public MediaClockTest, public testing::WithParamInterface<int> {};

TEST_P(OldCameraTest, PicturesArePlacedByTheSoundBesideThem) {
  const bool isCut = GetParam() > 1;
  clock.begin(189, 15);
  clock.soundConfig(std::vector<std::uint8_t>{0x11, 0x90});  // 48 kHz
  std::int64_t stamp = 0;
  for (int picture = 0, frame = 0; picture < 60; ++picture) {
    const double taken = picture * 1000.0 / 15;
    for (; frame * 1024 / 48.0 < taken; ++frame) clock.sound(7000 + 21 * frame);
    // What a picture's first bytes release: the last slice of the one before, and all but its own last.
    if (isCut) next(stamp += 66);
    const auto placed = first(stamp += 66);
    for (int slice = 2; slice < GetParam(); ++slice) next(stamp += 66);
    const double own = 7000 + taken - (isCut ? 0 : 1000.0 / 15);
    ASSERT_TRUE(placed);
    if (picture > 20) {
      EXPECT_NEAR(static_cast<double>(*placed), own, 6) << picture;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Slices, OldCameraTest, testing::Values(1, 4));

TEST_F(MediaClockTest, PicturesBeforeTheFirstSoundArePlacedByTheFirstBesideIt) {
  clock.begin(189, 15);
  EXPECT_EQ(first(66), 0);
  EXPECT_EQ(first(132), 66);
  clock.sound(153);
  EXPECT_EQ(first(198), 132);  // it came before the sound did
  EXPECT_EQ(first(264), 164);  // 153 and half a frame
  EXPECT_EQ(clock.pictureOf(198).time, 98);
  EXPECT_EQ(clock.pictureOf(132).time, 32);
  EXPECT_EQ(clock.pictureOf(66).time, -34);
}

TEST_F(MediaClockTest, KnowsTheLatestPicturesAndTheNewestOfAStamp) {
  clock.begin(192, 30);
  for (int picture = 0; picture <= 256; ++picture) first(1000 + picture);
  EXPECT_EQ(clock.pictureOf(1000).time, 1000);  // forgotten: its own stamp
  EXPECT_EQ(clock.pictureOf(1001).time, 1000);
  first(1256);
  EXPECT_EQ(clock.pictureOf(1256).time, 1256);
  clock.begin(192, 30);
  EXPECT_EQ(clock.pictureOf(1001).time, 1001);
}

}  // namespace
}  // namespace zel

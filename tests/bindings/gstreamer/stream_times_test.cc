#include "bindings/gstreamer/stream_times.h"

#include <gtest/gtest.h>

namespace zel::gst {
namespace {

constexpr std::uint64_t kSecond = 1'000'000'000;
constexpr std::uint64_t kPicture = 33'333'333, kFrame = 21'333'333;

class StreamTimesTest : public testing::Test {
 protected:
  void arrive(Track track, std::int64_t time, std::uint64_t at, bool discontinuity = false, bool begins = true) {
    times.arrived({.track = track, .time = time, .data = {}, .arrival = {}, .discontinuity = discontinuity},
                  begins && track == Track::video, at);
  }
  std::uint64_t video(std::int64_t time) { return times.place(Track::video, time, kPicture)->time; }
  std::uint64_t audio(std::int64_t time) { return times.place(Track::audio, time, kFrame)->time; }

  StreamTimes times;
};

TEST_F(StreamTimesTest, NothingHasAPlaceBeforeAPictureThatMayBeTheFirst) {
  arrive(Track::audio, 0, kSecond);
  arrive(Track::video, 0, kSecond, false, false);
  EXPECT_FALSE(times.place(Track::audio, 0, kFrame));
  EXPECT_FALSE(times.place(Track::video, 0, kPicture));
}

TEST_F(StreamTimesTest, TheFirstPictureStandsAtItsArrivalAndTheRestByTheCamerasClock) {
  arrive(Track::video, 500'000, 7 * kSecond);
  EXPECT_EQ(video(500'000), 7'000'000'000);
  EXPECT_EQ(audio(510'000), 7'010'000'000);
  arrive(Track::video, 533'333, 9 * kSecond);
  EXPECT_EQ(video(533'333), 7'033'333'000);
}

TEST_F(StreamTimesTest, WhatArrivedBeforeThePipelinesBeginStandsThere) {
  arrive(Track::video, 500'000, 0);
  EXPECT_EQ(audio(490'000), 0);
  EXPECT_EQ(video(500'000), 0);
}

TEST_F(StreamTimesTest, ABreakLeavesAGapOfOneLengthOnBothTracks) {
  arrive(Track::video, 0, kSecond);
  EXPECT_TRUE(times.place(Track::video, 0, kPicture)->isFirst);
  EXPECT_TRUE(times.place(Track::audio, 0, kFrame)->isFirst);
  EXPECT_FALSE(times.place(Track::audio, 21'333, kFrame)->isFirst);
  arrive(Track::video, 33'333, 11 * kSecond, true);
  const auto picture = times.place(Track::video, 33'333, kPicture);
  EXPECT_EQ(picture->time, 11'000'000'000);
  EXPECT_TRUE(picture->isFirst);
  arrive(Track::audio, 43'333, 12 * kSecond, true);
  const auto sound = times.place(Track::audio, 43'333, kFrame);
  EXPECT_EQ(sound->time, 11'010'000'000) << "the same break, told again";
  EXPECT_TRUE(sound->isFirst);
  arrive(Track::audio, 64'666, 20 * kSecond, true);
  EXPECT_EQ(audio(64'666), 20'000'000'000) << "another break";
}

TEST_F(StreamTimesTest, ABreakBeginsBehindWhatStandsThere) {
  arrive(Track::video, 0, kSecond);
  video(0);
  EXPECT_EQ(audio(900'000), 1'900'000'000);
  arrive(Track::video, 950'000, 1'200'000'000, true);
  EXPECT_EQ(video(950'000), 1'900'000'000 + kFrame);
}

TEST_F(StreamTimesTest, NoTrackGoesBack) {
  arrive(Track::video, 0, kSecond);
  EXPECT_EQ(video(100'000), 1'100'000'000);
  EXPECT_EQ(video(100'000), 1'100'000'001);
  EXPECT_EQ(video(50'000), 1'100'000'002);
  EXPECT_EQ(audio(50'000), 1'050'000'000);
}

TEST_F(StreamTimesTest, ARestartWaitsForAPictureAgain) {
  arrive(Track::video, 0, kSecond);
  video(0);
  times.restart();
  EXPECT_FALSE(times.place(Track::video, 33'333, kPicture));
  arrive(Track::video, 66'666, 5 * kSecond, true);
  EXPECT_EQ(video(66'666), 5'000'000'000);
  arrive(Track::audio, 70'666, 6 * kSecond, true);
  EXPECT_EQ(audio(70'666), 5'004'000'000);
}

}  // namespace
}  // namespace zel::gst

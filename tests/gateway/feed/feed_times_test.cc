#include "gateway/feed/feed_times.h"

#include <gtest/gtest.h>

namespace zel::gateway {
namespace {

MediaPacket at(std::int64_t time, Track track = Track::video) { return {track, false, time, {}, std::nullopt}; }

TEST(FeedTimesTest, AStreamsOwnTimesStay) {
  FeedTimes times;
  EXPECT_EQ(times.place(at(3'200'000)), 3'200'000);
  EXPECT_EQ(times.place(at(3'180'000, Track::audio)), 3'180'000);
  EXPECT_EQ(times.place(at(3'233'333)), 3'233'333);
}

TEST(FeedTimesTest, AnotherStreamGoesOnBehindTheOneBefore) {
  FeedTimes times;
  times.place(at(0));
  times.place(at(500'000));
  times.place(at(510'000, Track::audio));
  times.beginStream();
  EXPECT_EQ(times.place(at(0)), 550'000);
  EXPECT_EQ(times.place(at(33'000)), 583'000);
  EXPECT_EQ(times.place(at(5'000, Track::audio)), 555'000);
}

TEST(FeedTimesTest, AJumpBackByMoreThanASecondGoesOnAndASmallerOneIsLate) {
  FeedTimes times;
  times.place(at(5'000'000));
  EXPECT_EQ(times.place(at(4'000'000)), 5'000'001);  // a second
  EXPECT_EQ(times.place(at(4'000'000)), 5'040'001);  // a microsecond more
  EXPECT_EQ(times.place(at(4'033'000)), 5'073'001);
}

TEST(FeedTimesTest, AJumpAheadStaysAsThePauseThatItIs) {
  FeedTimes times;
  times.place(at(0));
  EXPECT_EQ(times.place(at(600'000'000)), 600'000'000);
}

TEST(FeedTimesTest, NoTimeIsNegativeAndNoneIsTwiceOnATrack) {
  FeedTimes times;
  EXPECT_EQ(times.place(at(-20'000)), 0);
  EXPECT_EQ(times.place(at(0)), 20'000);
  EXPECT_EQ(times.place(at(0)), 20'001);
  EXPECT_EQ(times.place(at(0, Track::audio)), 20'000);
}

}  // namespace
}  // namespace zel::gateway

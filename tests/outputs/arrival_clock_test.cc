#include "outputs/arrival_clock.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/simulated/scripted_video_decoder.h"

namespace zel::test {
namespace {

using app::ArrivalClock;

TEST(ArrivalClock, TellsWhenTheLastUnitOfAPictureCame) {
  ArrivalClock clock;
  clock.note(33);
  const auto between = ArrivalClock::Clock::now();
  clock.note(33);
  const auto before = ArrivalClock::Clock::now();
  clock.note(66);
  EXPECT_GE(clock.of(33), between);
  EXPECT_LE(clock.of(33), before);
  EXPECT_GE(clock.of(66), before);
}

TEST(ArrivalClock, APictureThatItDoesNotKnowCameNow) {
  ArrivalClock clock;
  clock.note(33);
  const auto before = ArrivalClock::Clock::now();
  EXPECT_GE(clock.of(34), before);
}

TEST(ArrivalClock, KnowsTheLastSixtyFourPicturesHoweverManySlicesTheyHave) {
  ArrivalClock clock;
  for (int picture = 0; picture < 64; ++picture)
    for (int slice = 0; slice < 8; ++slice) clock.note(picture);
  const auto before = ArrivalClock::Clock::now();
  EXPECT_LE(clock.of(0), before);
  clock.note(64);
  EXPECT_GE(clock.of(0), before);
  EXPECT_LE(clock.of(1), before);
}

// The same stamp on the last slice of a picture and on the first of the next one, as the player gives it.
TEST(NotingDecoders, GivePicturesTheirOwnTimes) {
  const std::vector<std::uint8_t> first = {0, 0, 0, 2, 0x65, 0x80}, next = {0, 0, 0, 2, 0x65, 0x40};
  platform::ScriptedVideoDecoders decoders;
  app::MediaClock times;
  ArrivalClock arrivals;
  app::NotingDecoders noting(decoders, times, arrivals);
  const auto decoder = noting.create({}, {}).decoder;
  times.begin(192, 30);
  times.slice(first, 100);
  times.slice(next, 133);
  times.slice(first, 133);
  times.slice(next, 167);
  times.slice(first, 167);
  times.slice(first, 200);  // the only slice of its picture
  EXPECT_EQ(decoder->decode(first, 133).picture.timestamp, 133);
  const auto between = ArrivalClock::Clock::now();
  EXPECT_EQ(decoder->decode(next, 167).picture.timestamp, 133);
  EXPECT_GE(arrivals.of(133), between);
  EXPECT_EQ(decoder->decode(first, 200).picture.timestamp, 167);
  EXPECT_EQ(decoder->decode(first, 999).picture.timestamp, 999);  // nobody told of it
}

}  // namespace
}  // namespace zel::test

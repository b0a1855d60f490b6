#include "apps/zelcam/arrival_clock.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace zel::test

#include "apps/zelcam/commands/picture_rate.h"

#include <gtest/gtest.h>

#include <limits>

namespace zel::test {
namespace {

using app::isLate;
using app::PictureRate;
using std::chrono::milliseconds;

PictureRate::Clock::time_point at(int time) { return PictureRate::Clock::time_point() + milliseconds(time); }

TEST(PictureRate, CountsFromTheFirstPictureToTheNewest) {
  PictureRate rate;
  for (const int time : {5000, 5040, 5080, 5120}) rate.note(at(time));
  EXPECT_EQ(rate.pictures(), 4);
  EXPECT_DOUBLE_EQ(rate.perSecond(), 25);
}

TEST(PictureRate, IsNoneBeforeTheSecondPicture) {
  PictureRate rate;
  EXPECT_EQ(rate.perSecond(), 0);
  rate.note(at(5000));
  EXPECT_EQ(rate.perSecond(), 0);
}

TEST(PictureRate, IsNoneWhereAllCameAtOneMoment) {
  PictureRate rate;
  rate.note(at(5000));
  rate.note(at(5000));
  EXPECT_EQ(rate.perSecond(), 0);
}

TEST(LatenessTest, IsCountedBeyondAFifthOfASecond) {
  EXPECT_FALSE(isLate(699'999'999'800, 700'000'000'000));
  EXPECT_TRUE(isLate(699'999'999'799, 700'000'000'000));
}

TEST(LatenessTest, IsToldOfTimesThatAreTooFarAwayForADifference) {
  EXPECT_TRUE(isLate(std::numeric_limits<std::int64_t>::min(), 700'000'000'000));
  EXPECT_FALSE(isLate(std::numeric_limits<std::int64_t>::max(), 700'000'000'000));
}

}  // namespace
}  // namespace zel::test

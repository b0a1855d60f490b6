#include "facade/link_keeper.h"

#include <gmock/gmock.h>

#include <vector>

namespace zel::test {
namespace {

constexpr bool kAttached = true, kNotAttached = false;

// The times at which a link in that state is opened again, looked at four times a second from 100 s on.
std::vector<double> attempts(LinkKeeper& keeper, LinkStatus status, bool isAttached, double until) {
  std::vector<double> times;
  for (double now = 100; now <= until; now += 0.25) {
    if (keeper.isDue(status, isAttached, now)) times.push_back(now);
  }
  return times;
}

TEST(LinkKeeperTest, OpensASilentLinkAfterOneTwoAndEveryFourSeconds) {
  LinkKeeper keeper;
  // The look after an attempt begins the next pause.
  EXPECT_THAT(attempts(keeper, LinkStatus::silent, kAttached, 116),
              testing::ElementsAre(101, 103.25, 107.5, 111.75, 116));
}

TEST(LinkKeeperTest, OpensACameraThatIsAttachedWithoutASession) {
  LinkKeeper keeper;
  EXPECT_THAT(attempts(keeper, LinkStatus::closed, kAttached, 102), testing::ElementsAre(101));
}

TEST(LinkKeeperTest, WaitsForACameraThatIsNotThereAndForASessionThatIsOpen) {
  LinkKeeper keeper;
  EXPECT_THAT(attempts(keeper, LinkStatus::closed, kNotAttached, 200), testing::IsEmpty());
  EXPECT_THAT(attempts(keeper, LinkStatus::open, kAttached, 200), testing::IsEmpty());
}

TEST(LinkKeeperTest, BeginsWithTheShortestPauseOnceFramesHaveArrived) {
  LinkKeeper keeper;
  attempts(keeper, LinkStatus::silent, kAttached, 120);
  EXPECT_FALSE(keeper.isDue(LinkStatus::flowing, kAttached, 121));
  EXPECT_FALSE(keeper.isDue(LinkStatus::silent, kAttached, 122));
  EXPECT_FALSE(keeper.isDue(LinkStatus::silent, kAttached, 122.75));
  EXPECT_TRUE(keeper.isDue(LinkStatus::silent, kAttached, 123));
}

}  // namespace
}  // namespace zel::test

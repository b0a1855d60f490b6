#include "platform/linux/camera_holds.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "tests/platform/linux/temporary_folder.h"

namespace zel::platform {
namespace {

using State = CameraHolds::State;

class CameraHoldsTest : public ::testing::Test {
 protected:
  CameraHoldsTest() { std::filesystem::create_directory(bus()); }

  std::string bus() const { return folder_.file("bus"); }
  // Whether another program could have it now.
  bool isFree() const { return CameraLock::take(bus(), "E1A0001", "another").lock != nullptr; }

  test::TemporaryFolder folder_;
  CameraHolds holds_{bus(), "one", false};
};

TEST_F(CameraHoldsTest, ACameraHasOneSessionThatCounts) {
  const auto first = holds_.take("E1A0001");
  ASSERT_NE(first.use, nullptr) << first.fault;
  const auto second = holds_.take("E1A0001");
  EXPECT_EQ(second.use, nullptr);
  ASSERT_TRUE(second.user.has_value());
  EXPECT_EQ(second.user->process, ::getpid());
  EXPECT_EQ(second.user->program, "one");
  EXPECT_NE(holds_.take("E1A0002").use, nullptr);
}

TEST_F(CameraHoldsTest, AnotherProgramHasItUntilItsEnd) {
  auto other = CameraLock::take(bus(), "E1A0001", "another");
  const auto refused = holds_.take("E1A0001");
  EXPECT_EQ(refused.use, nullptr);
  EXPECT_EQ(refused.user.value_or(CameraUser()).program, "another");
  other.lock.reset();
  EXPECT_NE(holds_.take("E1A0001").use, nullptr);
}

TEST_F(CameraHoldsTest, ASessionThatWasLetGoMakesRoomThoughItIsNotClosedYet) {
  const auto first = holds_.take("E1A0001");
  first.use->letGo();
  EXPECT_FALSE(isFree()) << "its streams are still open";
  EXPECT_NE(holds_.take("E1A0001").use, nullptr);
}

TEST_F(CameraHoldsTest, WithoutTheWishToKeepItGoesWithTheSession) {
  auto taken = holds_.take("E1A0001");
  EXPECT_EQ(holds_.of("E1A0001"), State::inSession);
  taken.use.reset();
  EXPECT_EQ(holds_.of("E1A0001"), State::free);
  EXPECT_TRUE(isFree());
}

TEST_F(CameraHoldsTest, IsKeptBetweenTwoSessionsUntilItIsGivenBack) {
  holds_.keepBetweenSessions(true);
  auto taken = holds_.take("E1A0001");
  EXPECT_TRUE(taken.isNew);
  taken.use.reset();
  EXPECT_EQ(holds_.of("E1A0001"), State::kept);
  EXPECT_FALSE(isFree());
  EXPECT_FALSE(holds_.take("E1A0001").isNew);
  holds_.giveBack("E1A0001");
  EXPECT_TRUE(isFree());
}

TEST_F(CameraHoldsTest, OnlyWhatHasNoSessionIsGivenBack) {
  holds_.keepBetweenSessions(true);
  const auto open = holds_.take("E1A0001");
  auto closed = holds_.take("E1A0002");
  closed.use.reset();
  holds_.giveBack();
  EXPECT_EQ(holds_.of("E1A0001"), State::inSession);
  EXPECT_EQ(holds_.of("E1A0002"), State::free);
}

TEST_F(CameraHoldsTest, EndOfTheWishGivesBackWithTheLastSession) {
  holds_.keepBetweenSessions(true);
  auto open = holds_.take("E1A0001");
  holds_.keepBetweenSessions(false);
  EXPECT_FALSE(isFree());
  open.use.reset();
  EXPECT_TRUE(isFree());
}

TEST_F(CameraHoldsTest, ForGoodIsUntilTheObjectGoes) {
  {
    CameraHolds holds(bus(), "two", true);
    holds.take("E1A0001").use.reset();
    holds.keepBetweenSessions(false);
    holds.giveBack();
    holds.giveBack("E1A0001");
    EXPECT_FALSE(isFree());
  }
  EXPECT_TRUE(isFree());
}

TEST_F(CameraHoldsTest, ASessionThatOutlivesTheObjectHasItsCamera) {
  std::shared_ptr<CameraUse> use;
  {
    CameraHolds holds(bus(), "two", true);
    use = holds.take("E1A0001").use;
  }
  EXPECT_FALSE(isFree());
  use.reset();
  EXPECT_TRUE(isFree());
}

}  // namespace
}  // namespace zel::platform

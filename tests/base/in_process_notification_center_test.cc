#include <ZELTarkaSDK/platform/in_process_notification_center.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace zel::platform {
namespace {

using testing::ElementsAre;

class InProcessNotificationCenterTest : public testing::Test {
 protected:
  auto observe(std::string_view name, std::string said) {
    return center.observe(name, [this, said = std::move(said)](const Notification&) { heard.push_back(said); });
  }

  InProcessNotificationCenter center;
  std::vector<std::string> heard;
};

TEST_F(InProcessNotificationCenterTest, TellsTheObserversOfThatNameInTheOrderOfTheirAddition) {
  const auto first = observe("attached", "first"), second = observe("attached", "second");
  const auto other = observe("detached", "other");
  center.post({"attached", {}, nullptr});
  EXPECT_THAT(heard, ElementsAre("first", "second"));
}

TEST_F(InProcessNotificationCenterTest, TellsNothingToAnObservationThatHasEnded) {
  auto ended = observe("attached", "ended");
  const auto kept = observe("attached", "kept");
  ended.reset();
  center.post({"attached", {}, nullptr});
  EXPECT_THAT(heard, ElementsAre("kept"));
}

TEST_F(InProcessNotificationCenterTest, MayGoBeforeItsObservations) {
  auto gone = std::make_unique<InProcessNotificationCenter>();
  const auto observation = gone->observe("attached", [](const Notification&) {});
  gone.reset();
  EXPECT_NE(observation, nullptr);
}

}  // namespace
}  // namespace zel::platform

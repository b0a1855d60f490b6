#include <gmock/gmock.h>

#include "tests/platform/harness.h"

namespace zel::test {
namespace {

using testing::ElementsAre;

class NotificationCenterConformance : public Conformance {
 protected:
  platform::NotificationCenter& center = ports.notifications;
  std::vector<int> heard;
};

TEST_P(NotificationCenterConformance, CallsObserversInTheOrderOfRegistrationBeforePostReturns) {
  const auto one = center.observe("name", [&](const auto&) { heard.push_back(1); });
  const auto two = center.observe("name", [&](const auto&) { heard.push_back(2); });
  center.post({"name", {}});
  EXPECT_THAT(heard, ElementsAre(1, 2));
}

TEST_P(NotificationCenterConformance, DoesNotHearOtherNames) {
  const auto one = center.observe("name", [&](const auto&) { heard.push_back(1); });
  center.post({"names", {}});
  center.post({"nam", {}});
  EXPECT_THAT(heard, ElementsAre());
}

TEST_P(NotificationCenterConformance, CarriesItsValues) {
  std::int64_t value = 0;
  const auto one =
      center.observe("name", [&](const auto& note) { value = std::get<std::int64_t>(note.userInfo.at("key")); });
  center.post({"name", {{"key", std::int64_t{-5}}}});
  EXPECT_EQ(value, -5);
}

TEST_P(NotificationCenterConformance, DoesNotCallAnObserverThatWasRemovedDuringThePost) {
  std::unique_ptr<platform::NotificationObservation> second;
  const auto first = center.observe("name", [&](const auto&) {
    heard.push_back(1);
    second.reset();
  });
  second = center.observe("name", [&](const auto&) { heard.push_back(2); });
  center.post({"name", {}});
  EXPECT_THAT(heard, ElementsAre(1));
}

TEST_P(NotificationCenterConformance, LetsAnObserverRemoveItselfInsideItsCall) {
  std::unique_ptr<platform::NotificationObservation> own;
  own = center.observe("name", [&](const auto&) {
    own.reset();
    heard.push_back(1);
  });
  center.post({"name", {}});
  center.post({"name", {}});
  EXPECT_THAT(heard, ElementsAre(1));
}

TEST_P(NotificationCenterConformance, LetsAnObserverPostAndObserve) {
  std::vector<std::unique_ptr<platform::NotificationObservation>> added;
  const auto one = center.observe("outer", [&](const auto&) {
    added.push_back(center.observe("inner", [&](const auto&) { heard.push_back(1); }));
    center.post({"inner", {}});
  });
  center.post({"outer", {}});
  EXPECT_THAT(heard, ElementsAre(1));
}

TEST_P(NotificationCenterConformance, CallsObserversOnTheThreadThatPosts) {
  const auto thread = startThread();
  Log<bool> onThread;
  const auto one = center.observe("name", [&](const auto&) { onThread.add(thread->isCurrent()); });
  inside(thread->runLoop(), [&] { center.post({"name", {}}); });
  EXPECT_THAT(onThread.all(), ElementsAre(true));
}

ZEL_CONFORMANCE_SUITE(NotificationCenterConformance);

}  // namespace
}  // namespace zel::test

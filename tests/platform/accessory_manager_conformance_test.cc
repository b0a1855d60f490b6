#include <gmock/gmock.h>

#include "tests/platform/harness.h"

namespace zel::test {
namespace {

using testing::ElementsAre;

class AccessoryManagerConformance : public Conformance {
 protected:
  void observe() {
    ports.accessories.registerForLocalNotifications();
    connects_ = ports.notifications.observe(platform::kAccessoryDidConnectNotification,
                                            [this](const auto& note) { record("+", note); });
    disconnects_ = ports.notifications.observe(platform::kAccessoryDidDisconnectNotification,
                                               [this](const auto& note) { record("-", note); });
  }

  void plug(std::uint64_t connectionID) {
    harness->plug(camera(connectionID));
    const auto attached = [this, connectionID] {
      const auto all = ids();
      return std::find(all.begin(), all.end(), connectionID) != all.end();
    };
    ASSERT_TRUE(runUntil(attached));
  }

  std::vector<std::uint64_t> ids() {
    std::vector<std::uint64_t> all;
    for (const auto& accessory : ports.accessories.connectedAccessories()) {
      all.push_back(accessory->description().connectionID);
    }
    return all;
  }

  Log<std::string> heard;

 private:
  void record(const std::string& sign, const platform::Notification& note) {
    const auto accessory = note.accessory(platform::kAccessoryKey);
    heard.add(accessory ? sign + std::to_string(accessory->description().connectionID) : sign + "nothing");
  }

  std::unique_ptr<platform::NotificationObservation> connects_;
  std::unique_ptr<platform::NotificationObservation> disconnects_;
};

TEST_P(AccessoryManagerConformance, ListsAccessoriesByTheirConnectionIdentifiers) {
  EXPECT_THAT(ids(), ElementsAre());
  plug(30);
  plug(4);
  plug(200);
  EXPECT_THAT(ids(), ElementsAre(4U, 30U, 200U));
}

TEST_P(AccessoryManagerConformance, TellsWhatTheAccessorySaysOfItself) {
  plug(7);
  const auto accessory = ports.accessories.connectedAccessories().at(0);
  EXPECT_EQ(accessory->description(), camera(7));
  EXPECT_TRUE(accessory->isConnected());
}

TEST_P(AccessoryManagerConformance, AnnouncesComingAndGoingOnceEach) {
  observe();
  harness->plug(camera(7));
  ASSERT_TRUE(runUntil([&] { return heard.size() == 1; }));
  harness->unplug(7);
  ASSERT_TRUE(runUntil([&] { return heard.size() == 2; }));
  EXPECT_THAT(heard.all(), ElementsAre("+7", "-7"));
  EXPECT_THAT(ids(), ElementsAre());
}

TEST_P(AccessoryManagerConformance, AnnouncesNothingThatWasThereBefore) {
  plug(1);
  observe();
  harness->plug(camera(2));
  ASSERT_TRUE(runUntil([&] { return heard.size() >= 1; }));
  EXPECT_THAT(heard.all(), ElementsAre("+2"));
}

TEST_P(AccessoryManagerConformance, AnnouncesNothingWhenNobodyIsRegistered) {
  observe();
  ports.accessories.unregisterForLocalNotifications();
  plug(1);
  ports.accessories.registerForLocalNotifications();
  harness->plug(camera(2));
  ASSERT_TRUE(runUntil([&] { return heard.size() >= 1; }));
  EXPECT_THAT(heard.all(), ElementsAre("+2"));
}

TEST_P(AccessoryManagerConformance, AnnouncesUntilTheLastOfSeveralRegistrationsEnds) {
  observe();
  ports.accessories.registerForLocalNotifications();
  ports.accessories.unregisterForLocalNotifications();
  harness->plug(camera(9));
  ASSERT_TRUE(runUntil([&] { return heard.size() == 1; }));
  ports.accessories.unregisterForLocalNotifications();
  plug(1);
  flush(ports.threads.currentRunLoop());
  EXPECT_THAT(heard.all(), ElementsAre("+9"));
}

TEST_P(AccessoryManagerConformance, KeepsTheObjectOfAnAccessoryThatHasLeft) {
  plug(7);
  const auto accessory = ports.accessories.connectedAccessories().at(0);
  harness->unplug(7);
  ASSERT_TRUE(runUntil([&] { return !accessory->isConnected(); }));
  EXPECT_EQ(accessory->description(), camera(7));
  EXPECT_EQ(ports.accessories.openSession(accessory, kProtocol), nullptr);
}

TEST_P(AccessoryManagerConformance, OpensSessionsOnlyForAnOfferedProtocol) {
  plug(7);
  const auto accessory = ports.accessories.connectedAccessories().at(0);
  EXPECT_EQ(ports.accessories.openSession(accessory, "com.example.unknown"), nullptr);
  EXPECT_EQ(ports.accessories.openSession(nullptr, kProtocol), nullptr);
  EXPECT_NE(ports.accessories.openSession(accessory, kProtocol), nullptr);
}

ZEL_CONFORMANCE_SUITE(AccessoryManagerConformance);

}  // namespace
}  // namespace zel::test

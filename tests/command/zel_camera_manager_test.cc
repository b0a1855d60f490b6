#include <ZELTarkaSDK/ZELCameraManager.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "capture/zel_ucd_file.h"
#include "tests/command/command_test.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ZELCameraManagerTest : public CommandTest {
 protected:
  ZELCameraManager& manager() { return stack.manager(); }

  std::unique_ptr<platform::NotificationObservation> listenTo(std::string_view name) {
    return host.ports().notifications.observe(name, [this](const platform::Notification& notification) {
      EXPECT_EQ(notification.sender, &manager());
      std::string line = notification.name;
      for (const auto& [key, value] : notification.userInfo) {
        line += ' ' + key + ' ' + std::to_string(std::get<std::int64_t>(value));
      }
      log.push_back(line);
    });
  }

  std::vector<std::string> log;
  std::unique_ptr<platform::NotificationObservation> change = listenTo("ZELCameraNotificationBatteryChange");
  std::unique_ptr<platform::NotificationObservation> low = listenTo("ZELCameraNotificationBatteryLow");
  std::unique_ptr<platform::NotificationObservation> off = listenTo("ZELCameraNotificationPowerOff");
  Outcome outcome;
};

TEST_F(ZELCameraManagerTest, PostsTheBatteryEvents) {
  manager().registerForCameraNotifications();
  answer("0360 01 28");
  answer("0460 0A");
  answer("0560 02");
  EXPECT_THAT(log, ElementsAre("ZELCameraNotificationBatteryChange batteryState 40 powerType 1",
                               "ZELCameraNotificationBatteryLow batteryState 10",
                               "ZELCameraNotificationPowerOff batteryState 2"));
}

TEST_F(ZELCameraManagerTest, PostsNothingForOtherEvents) {
  manager().registerForCameraNotifications();
  for (const char* event :
       {"0160 01", "0260", "0660 01", "0760 01", "0860 01", "0960", "0A60", "0B60", "0C60 01", "0D60", "0E60"})
    answer(event);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(ZELCameraManagerTest, PostsOnlyWhileItIsRegistered) {
  answer("0460 0A");
  EXPECT_THAT(log, IsEmpty());
  manager().registerForCameraNotifications();
  manager().unRegisterForCameraNotifications();
  answer("0460 0A");
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(ZELCameraManagerTest, PostsNothingOnceItHasGone) {
  {
    ZELCameraManager other(accessory(), ucd(), host.ports().notifications);
    other.registerForCameraNotifications();
  }
  answer("0460 0A");
  EXPECT_THAT(log, IsEmpty());
}

// Counts the notifications of a low battery, whoever posts them.
class AddedManagerTest : public CommandTest {
 protected:
  std::shared_ptr<ZELCameraManager> made() {
    return std::make_shared<ZELCameraManager>(accessory(), ucd(), host.ports().notifications);
  }

  int posted = 0;
  std::unique_ptr<platform::NotificationObservation> low = host.ports().notifications.observe(
      "ZELCameraNotificationBatteryLow", [this](const platform::Notification&) { ++posted; });
};

TEST_F(AddedManagerTest, PostsAsAReceiverAmongOthers) {
  const auto manager = made();
  ucd().addCameraNotificationReceiver(manager);
  answer("0460 0A");
  EXPECT_EQ(posted, 1);
  ucd().removeCameraNotificationReceiver(manager.get());
  answer("0460 0A");
  EXPECT_EQ(posted, 1);
}

TEST_F(AddedManagerTest, IsHeldUntilItIsRemoved) {
  std::weak_ptr<ZELCameraManager> seen;
  {
    const auto manager = made();
    seen = manager;
    ucd().addCameraNotificationReceiver(manager);
  }
  answer("0460 0A");
  EXPECT_EQ(posted, 1);
  ASSERT_FALSE(seen.expired());
  ucd().removeCameraNotificationReceiver(seen.lock().get());
  EXPECT_TRUE(seen.expired());
}

TEST_F(AddedManagerTest, GoesWithTheCommandLayerThatHoldsIt) {
  std::weak_ptr<ZELCameraManager> seen;
  {
    ZELUCDFile file([](const ZELData&) {}, host.ports().queues.mainQueue());
    ZELCameraUCD own(accessory(), stack.parser(), file, host.ports().queues.mainQueue());
    const auto manager = std::make_shared<ZELCameraManager>(accessory(), own, host.ports().notifications);
    seen = manager;
    own.addCameraNotificationReceiver(manager);
  }
  EXPECT_TRUE(seen.expired());
}

struct Acting final : ZELCameraNotificationProtocol {
  explicit Acting(std::function<void()> given) : act(std::move(given)) {}
  void notificationType(std::int64_t, const std::optional<ZELMessageFields>&) override { act(); }
  const std::function<void()> act;
};

TEST_F(AddedManagerTest, HearsNothingOfTheEventInWhichItGoes) {
  auto manager = made();
  ucd().addCameraNotificationReceiver(std::make_shared<Acting>([&] { manager.reset(); }));
  manager->registerForCameraNotifications();
  answer("0460 0A");
  EXPECT_EQ(posted, 0);
}

TEST_F(AddedManagerTest, EndsRegistrationsAndAdditionsAtOnce) {
  const auto manager = made();
  ucd().addCameraNotificationReceiver(manager);
  manager->registerForCameraNotifications();
  answer("0460 0A");
  EXPECT_EQ(posted, 2);
  manager->unRegisterForCameraNotifications();
  answer("0460 0A");
  EXPECT_EQ(posted, 2);
}

TEST_F(ZELCameraManagerTest, MapsThePowerType) {
  const std::pair<const char*, const char*> kCases[] = {
      {"01C0 00 50", "ok 0 80"}, {"01C0 01 50", "ok 1 80"}, {"01C0 02 50", "ok 2 80"}, {"01C0 03 50", "ok 0 80"}};
  for (const auto& [reply, expected] : kCases) {
    manager().queryCameraBattery(outcome);
    answer(reply);
    EXPECT_EQ(outcome.text, expected) << reply;
  }
}

TEST_F(ZELCameraManagerTest, ReportsAnUnusableBatteryReplyWithZeros) {
  manager().queryCameraBattery(outcome);
  answer("01C0 01");
  EXPECT_EQ(outcome.text, "error 101 0 0");
}

TEST_F(ZELCameraManagerTest, AsksForTheBatteryWithoutAHandlerToo) {
  manager().queryCameraBattery(nullptr);
  EXPECT_EQ(written(), hex("08000000 0400 0140"));
  answer("01C0 01 50");
}

TEST_F(ZELCameraManagerTest, AsksForTheOffsetOfTypeZero) {
  manager().getCameraMediaOffset(5, outcome);
  EXPECT_EQ(written(), hex("0A000000 0400 0F40 00 05"));
  answer("0FC0 00");
  EXPECT_EQ(outcome.text, "error 101 none");
}

TEST_F(ZELCameraManagerTest, LetsFirmware190SetAndGetTheAudioBitrate) {
  manager().setCameraAudioBitrate(128000, outcome);
  EXPECT_EQ(written(), hex("0C000000 0400 1300 00F40100"));
  answer("1380 01");
  EXPECT_EQ(outcome.text, "ok");
  manager().getCameraAudioBitrateWithRebackBlock(outcome);
  EXPECT_EQ(written(), hex("08000000 0400 4840"));
  answer("48C0 01 00F40100");
  EXPECT_EQ(outcome.text, "ok 128000");
}

class OldCameraTest : public ZELCameraManagerTest {
 protected:
  void SetUp() override { openAndSynchronise(cameraDescription(7, "E1_189")); }
};

TEST_F(OldCameraTest, IsRefusedTheAudioBitrateAtOnceOnTheCallersThread) {
  manager().setCameraAudioBitrate(128000, outcome);
  EXPECT_EQ(outcome.text, "error 120");
  manager().getCameraAudioBitrateWithRebackBlock(outcome);
  EXPECT_EQ(outcome.text, "error 120 0");
  EXPECT_THAT(written(), IsEmpty());
  EXPECT_EQ(outcome.calls, 2);
  EXPECT_EQ(manager().checkoutAudioAsynVersion(), (ZELError{"NSOSStatusErrorDomain", 120, std::nullopt}));
}

TEST_F(OldCameraTest, RefusesTheAudioBitrateWithoutAHandlerToo) {
  manager().setCameraAudioBitrate(128000, nullptr);
  manager().getCameraAudioBitrateWithRebackBlock(nullptr);
  EXPECT_THAT(written(), IsEmpty());
}

TEST_F(OldCameraTest, PassesTheGateWhileNothingIsConnected) {
  host.unplug(camera);
  host.runUntilIdle();
  EXPECT_EQ(manager().checkoutAudioAsynVersion(), std::nullopt);
  manager().getCameraAudioBitrateWithRebackBlock(outcome);
  EXPECT_EQ(outcome.calls, 0);
  host.runUntilIdle();
  EXPECT_EQ(outcome.text, "error 100 0");
}

TEST_F(OldCameraTest, PassesTheGateWhileFramesHaveStopped) {
  host.advance(5);
  ASSERT_EQ(accessory().status(), 3u);
  EXPECT_EQ(manager().checkoutAudioAsynVersion(), std::nullopt);
  manager().setCameraAudioBitrate(128000, outcome);
  EXPECT_EQ(written(), hex("0C000000 0400 1300 00F40100"));
}

TEST_F(OldCameraTest, PassesTheGateBeforeTheFirstFrame) {
  link().fire(platform::StreamEvent::errorOccurred);  // the session is opened anew
  host.runUntilIdle();
  ASSERT_EQ(accessory().status(), 1u);
  EXPECT_EQ(manager().checkoutAudioAsynVersion(), std::nullopt);
}

class Firmware190Test : public ZELCameraManagerTest {
 protected:
  void SetUp() override { openAndSynchronise(cameraDescription(7, "E1_190")); }
};

TEST_F(Firmware190Test, PassesTheGate) { EXPECT_EQ(manager().checkoutAudioAsynVersion(), std::nullopt); }

}  // namespace
}  // namespace zel::test

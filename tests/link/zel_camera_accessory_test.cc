#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "link/zel_tunnel_service.h"
#include "tests/link/simulated_camera.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ZELCameraAccessoryTest : public SimulatedCameraTest {
 protected:
  // The frame with which the clock is synchronised: 10 00 00 00 04 00 49 40 and 8 bytes of time.
  int syncTimeFrames() {
    const Bytes written = link().written();
    const Bytes head = bytes({0x10, 0, 0, 0, 4, 0, 0x49, 0x40});
    int count = 0;
    for (auto at = written.begin(); (at = std::search(at, written.end(), head.begin(), head.end())) != written.end();) {
      ++count;
      at += 8;
    }
    return count;
  }
  void answerClockAfter(double seconds) {
    host.advance(seconds);
    send(bytes({9, 0, 0, 0, 4, 0, 0x49, 0xC0, 0}));
  }
};

TEST_F(ZELCameraAccessoryTest, StartsWithoutAConnection) {
  EXPECT_EQ(accessory().status(), 0u);
  EXPECT_EQ(accessory().accessoryInfo(), nullptr);
  EXPECT_EQ(accessory().firewareVersion(), 0);
  EXPECT_EQ(accessory().lastReceivedDataTimer(), -1.0);
}

TEST_F(ZELCameraAccessoryTest, FindsNothingWhereNothingIsAttached) { EXPECT_EQ(accessory().openCamera(), nullptr); }

TEST_F(ZELCameraAccessoryTest, ConnectsToACameraThatIsAlreadyAttached) {
  attach();
  const auto info = accessory().openCamera();
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->serialNumber(), "E1A0007");
  EXPECT_EQ(accessory().status(), 1u);
}

TEST_F(ZELCameraAccessoryTest, TakesTheFirstOfTwoCameras) {
  host.plug(cameraDescription(8));
  host.plug(cameraDescription(3));
  EXPECT_EQ(accessory().openCamera()->connectionID(), 3u);
}

TEST_F(ZELCameraAccessoryTest, ConnectsToACameraThatIsAttachedLater) {
  accessory().openCamera();
  attach();
  EXPECT_EQ(accessory().status(), 1u);
  EXPECT_EQ(accessory().accessoryInfo()->connectionID(), 7u);
}

TEST_F(ZELCameraAccessoryTest, RefusesAnAccessoryWithoutTheProtocol) {
  auto other = cameraDescription();
  other.protocolStrings = {"com.example.other"};
  camera = host.plug(other);
  EXPECT_FALSE(accessory().connectCamera(camera));
  EXPECT_FALSE(session().isOpen());
}

TEST_F(ZELCameraAccessoryTest, RefusesAnAbsentAccessory) { EXPECT_FALSE(accessory().connectCamera(nullptr)); }

TEST_F(ZELCameraAccessoryTest, RefusesACameraWhoseSessionCannotBeOpened) {
  camera = host.plug(cameraDescription());
  camera->refuseSessions(true);
  EXPECT_FALSE(accessory().connectCamera(camera));
  EXPECT_EQ(accessory().accessoryInfo(), nullptr);
}

TEST_F(ZELCameraAccessoryTest, OpensASessionForEachMentionOfTheProtocol) {
  auto twice = cameraDescription();
  twice.protocolStrings = {"com.zelcam.ucd", "com.example.other", "com.zelcam.ucd"};
  camera = host.plug(twice);
  EXPECT_TRUE(accessory().connectCamera(camera));
  EXPECT_EQ(camera->sessionsOpened(), 2);
}

TEST_F(ZELCameraAccessoryTest, ConnectsOnlyToTheSerialNumberItWasGiven) {
  CameraStack chosen(host.ports(), "E1A0008");
  host.plug(cameraDescription(3));
  EXPECT_EQ(chosen.accessory().openCamera(), nullptr);
  host.plug(cameraDescription(8));
  host.runUntilIdle();
  EXPECT_EQ(chosen.accessory().accessoryInfo()->connectionID(), 8u);
}

class FirmwareNumber : public ZELCameraAccessoryTest,
                       public testing::WithParamInterface<std::pair<std::string, std::int64_t>> {};

TEST_P(FirmwareNumber, IsWhatFollowsTheLastUnderscore) {
  open(cameraDescription(7, GetParam().first));
  EXPECT_EQ(accessory().firewareVersion(), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Revisions, FirmwareNumber,
                         testing::Values(std::pair("E1_2.0.1_192", 192), std::pair("192", 192), std::pair("E1_x192", 0),
                                         std::pair("E1_", 0), std::pair("", 0), std::pair("1_2_189beta", 189),
                                         std::pair("E1_0190", 190), std::pair("E1_0x190", 0)));

TEST_F(ZELCameraAccessoryTest, ForgetsTheFirmwareWhenItCloses) {
  open();
  accessory().closeCamera();
  EXPECT_EQ(accessory().firewareVersion(), 0);
  EXPECT_EQ(accessory().accessoryInfo(), nullptr);
}

TEST_F(ZELCameraAccessoryTest, GoesThroughItsStatusesAndTellsObservers) {
  std::vector<std::uint64_t> seen;
  const auto watch = accessory().observeStatus([&](std::uint64_t status) { seen.push_back(status); });
  openAndSynchronise();
  host.advance(0.5);
  send(kAudioFrame);
  host.advance(3.5);
  send(kAudioFrame);
  accessory().closeCamera();
  EXPECT_THAT(seen, ElementsAre(1, 2, 3, 2, 0));
}

TEST_F(ZELCameraAccessoryTest, TellsOfAClosingOnce) {
  std::vector<std::uint64_t> seen;
  open();
  const auto watch = accessory().observeStatus([&](std::uint64_t status) { seen.push_back(status); });
  accessory().closeConnection();
  accessory().closeConnection();
  accessory().closeCamera();
  EXPECT_THAT(seen, ElementsAre(0));
}

TEST_F(ZELCameraAccessoryTest, StopsTellingAnObserverThatHasGone) {
  std::vector<std::uint64_t> seen;
  auto watch = accessory().observeStatus([&](std::uint64_t status) { seen.push_back(status); });
  watch.reset();
  open();
  EXPECT_THAT(seen, IsEmpty());
}

TEST_F(ZELCameraAccessoryTest, GivesAFreshSessionFiveSeconds) {
  open();
  host.advance(5.0);  // the tick at 5 seconds is not past them
  EXPECT_EQ(accessory().status(), 1u);
  host.advance(0.5);
  EXPECT_EQ(accessory().status(), 1u);
  accessory().onDetectTimer();
  EXPECT_EQ(accessory().status(), 3u);
}

TEST_F(ZELCameraAccessoryTest, CallsAFlowingCameraSilentAfterThreeSecondsAndBackWithOneFrame) {
  openAndSynchronise();
  host.advance(3.0);  // the tick at 3 seconds is not past them
  EXPECT_EQ(accessory().status(), 2u);
  host.advance(0.5);
  EXPECT_EQ(accessory().status(), 2u);
  accessory().onDetectTimer();
  EXPECT_EQ(accessory().status(), 3u);
  send(kAudioFrame);
  EXPECT_EQ(accessory().status(), 2u);
}

TEST_F(ZELCameraAccessoryTest, KeepsTheSessionOpenThroughSilence) {
  openAndSynchronise();
  host.advance(60);
  EXPECT_EQ(accessory().status(), 3u);
  EXPECT_EQ(camera->sessionsOpened(), 1);
}

TEST_F(ZELCameraAccessoryTest, AsksForTheMarkerOnceATickWhileItIsMissing) {
  open();
  host.advance(2.5);
  const Bytes request = join(bytes({18, 0, 0, 0, 4, 0, 0x2E, 0x40}), kMarker);
  EXPECT_EQ(link().written(), join(request, request));
}

TEST_F(ZELCameraAccessoryTest, AsksForNoMarkerOnceItWasFound) {
  open(cameraDescription(7, "E1_1_189"));
  send(join(kMarker, bytes({7})));
  host.advance(3);
  EXPECT_THAT(link().written(), IsEmpty());
  EXPECT_EQ(accessory().status(), 1u);
}

// Supervision begins with openConnection and ends with closeConnection; a session alone is not supervised.
TEST_F(ZELCameraAccessoryTest, WatchesNoSessionThatIsOpenedAfterTheConnectionWasClosed) {
  open();
  accessory().closeConnection();
  EXPECT_TRUE(accessory().connectCamera(camera));
  host.advance(10);
  EXPECT_THAT(link().written(), IsEmpty());
  EXPECT_EQ(accessory().status(), 1u);
}

TEST_F(ZELCameraAccessoryTest, AnnouncesAnAttachedCameraButNotOneThatWasThereAlready) {
  std::vector<std::string> posted;
  const auto watch = host.ports().notifications.observe(
      kZELCameraDidConnectNotification, [&](const platform::Notification& notification) {
        posted.push_back(notification.accessory(kZELCameraConnectAccessoryKey)->description().serialNumber);
      });
  open();
  EXPECT_THAT(posted, IsEmpty());
  host.unplug(camera);
  attach(cameraDescription(9));
  EXPECT_THAT(posted, ElementsAre("E1A0009"));
}

TEST_F(ZELCameraAccessoryTest, AnnouncesADetachedCameraBeforeItCloses) {
  std::vector<std::uint64_t> statusThen;
  const auto watch = host.ports().notifications.observe(
      kZELCameraDidDisConnectNotification,
      [&](const platform::Notification&) { statusThen.push_back(accessory().status()); });
  openAndSynchronise();
  host.unplug(camera);
  host.runUntilIdle();
  EXPECT_THAT(statusThen, ElementsAre(2));
  EXPECT_EQ(accessory().status(), 0u);
}

TEST_F(ZELCameraAccessoryTest, IgnoresTheDepartureOfAnotherAccessory) {
  openAndSynchronise();
  auto description = cameraDescription(99);
  description.protocolStrings = {"com.example.other"};
  const auto other = host.plug(description);
  host.runUntilIdle();
  host.unplug(other);
  host.runUntilIdle();
  EXPECT_EQ(accessory().status(), 2u);
  EXPECT_EQ(accessory().accessoryInfo()->connectionID(), 7u);
}

TEST_F(ZELCameraAccessoryTest, IgnoresArrivalsOnceClosed) {
  accessory().openCamera();
  accessory().closeCamera();
  attach();
  EXPECT_EQ(accessory().status(), 0u);
}

class RecordingDelegate final : public ZELCameraAccessoryDelegate {
 public:
  void cameraAccessoryOnError(const ZELError& error, const std::optional<ZELAccessoryDict>& dic) override {
    errors.push_back(error);
    dictionaries += dic.has_value() ? 1 : 0;
  }
  std::vector<ZELError> errors;
  int dictionaries = 0;
};

TEST_F(ZELCameraAccessoryTest, ReportsTheTunnelsFailureOnTheMainQueueAndConnectsAllTheSame) {
  const auto delegate = std::make_shared<RecordingDelegate>();
  accessory().setDelegate(delegate);
  attach();
  accessory().openCamera();
  EXPECT_THAT(delegate->errors, IsEmpty());  // not inside the call
  host.runUntilIdle();
  EXPECT_THAT(delegate->errors, ElementsAre(ZELError{"CameraAcccessoryError", 0, std::nullopt}));
  EXPECT_EQ(delegate->dictionaries, 0);
  EXPECT_EQ(accessory().status(), 1u);
}

TEST_F(ZELCameraAccessoryTest, HoldsItsDelegateWeakly) {
  auto delegate = std::make_shared<RecordingDelegate>();
  accessory().setDelegate(delegate);
  attach();
  accessory().openCamera();
  delegate.reset();
  host.runUntilIdle();
  EXPECT_EQ(accessory().delegate(), nullptr);
}

TEST_F(ZELCameraAccessoryTest, DoesNothingOnATickThatComesAfterTheClosing) {
  open();
  accessory().closeConnection();
  EXPECT_EQ(accessory().lastReceivedDataTimer(), -1.0);
  accessory().onDetectTimer();
  EXPECT_EQ(accessory().status(), 0u);
}

TEST_F(ZELCameraAccessoryTest, RepeatsASlowClockExchange) {
  openAndSynchronise();
  EXPECT_EQ(session().syncTimeCount(), 10);
  const std::int64_t sent = session().syncTimestamp();
  answerClockAfter(0.020);
  EXPECT_EQ(session().syncTimeCount(), 9);
  EXPECT_EQ(accessory().timeOffset(), sent + 10);
  EXPECT_EQ(accessory().syncRoundTrip(), 20);
  EXPECT_EQ(syncTimeFrames(), 1);
}

TEST_F(ZELCameraAccessoryTest, RepeatsAnExchangeOfTwelveMilliseconds) {
  openAndSynchronise();
  answerClockAfter(0.012);
  EXPECT_EQ(session().syncTimeCount(), 9);
}

TEST_F(ZELCameraAccessoryTest, IsContentWithAnExchangeOfElevenMilliseconds) {
  openAndSynchronise();
  const std::int64_t sent = session().syncTimestamp();
  answerClockAfter(0.011);
  EXPECT_EQ(session().syncTimeCount(), 10);
  EXPECT_EQ(accessory().timeOffset(), sent + 5);
  EXPECT_EQ(syncTimeFrames(), 0);
}

TEST_F(ZELCameraAccessoryTest, HalvesANegativeRoundTripTowardZero) {
  openAndSynchronise();
  const std::int64_t sent = session().syncTimestamp();
  accessory().updateReceiveSyncTimeCmdTimestamp(sent - 3);
  EXPECT_EQ(accessory().timeOffset(), sent - 1);
}

TEST_F(ZELCameraAccessoryTest, SpendsTenRepetitionsAndNoMoreEvenAcrossConnections) {
  openAndSynchronise();
  for (int i = 0; i < 6; ++i) answerClockAfter(0.020);
  accessory().closeCamera();
  host.unplug(camera);
  openAndSynchronise(cameraDescription(8));
  for (int i = 0; i < 6; ++i) answerClockAfter(0.020);
  EXPECT_EQ(session().syncTimeCount(), 0);
  EXPECT_EQ(syncTimeFrames(), 4);  // the last two slow answers are not followed by a command
}

TEST_F(ZELCameraAccessoryTest, ForgetsTheClockOffsetWhenItCloses) {
  openAndSynchronise();
  answerClockAfter(0.004);
  EXPECT_NE(accessory().timeOffset(), 0);
  accessory().closeCamera();
  EXPECT_EQ(accessory().timeOffset(), 0);
}

TEST_F(ZELCameraAccessoryTest, LetsNoLateFrameReviveAClosedConnection) {
  openAndSynchronise();
  accessory().closeConnection();
  accessory().receivedData();
  accessory().updateReceiveSyncTimeCmdTimestamp(5);
  EXPECT_EQ(accessory().status(), 0u);
  EXPECT_EQ(accessory().lastReceivedDataTimer(), -1.0);
  EXPECT_EQ(accessory().timeOffset(), 0);
}

TEST_F(ZELCameraAccessoryTest, OpensTwiceAsIfOnce) {
  attach();
  accessory().openCamera();
  accessory().openCamera();
  host.runUntilIdle();
  EXPECT_EQ(accessory().status(), 1u);
  accessory().closeCamera();
  host.unplug(camera);
  attach(cameraDescription(9));
  EXPECT_EQ(accessory().status(), 0u);
}

TEST_F(ZELCameraAccessoryTest, AnnouncesAnAttachedCameraOnceItsConnectionIsOpen) {
  std::vector<std::string> log;
  class Delegate final : public ZELCameraAccessoryDelegate {
   public:
    explicit Delegate(std::vector<std::string>& into) : log_(into) {}
    void cameraAccessoryOnError(const ZELError&, const std::optional<ZELAccessoryDict>&) override {
      log_.push_back("the connection's report");
    }

   private:
    std::vector<std::string>& log_;
  };
  const auto delegate = std::make_shared<Delegate>(log);
  accessory().setDelegate(delegate);
  // Both go through the main queue, which keeps their order.
  const auto watch =
      host.ports().notifications.observe(kZELCameraDidConnectNotification, [&](const platform::Notification&) {
        host.ports().queues.mainQueue().post([&] { log.push_back("after the announcement"); });
      });
  accessory().openCamera();
  attach();
  EXPECT_THAT(log, ElementsAre("the connection's report", "after the announcement"));
}

TEST_F(ZELCameraAccessoryTest, AsksThePlatformForArrivalsUntilItIsClosedHoweverOftenItIsOpened) {
  int heard = 0;
  const auto watch = host.ports().notifications.observe(platform::kAccessoryDidConnectNotification,
                                                        [&](const platform::Notification&) { ++heard; });
  attach(cameraDescription(1));
  EXPECT_EQ(heard, 0);
  accessory().openCamera();
  accessory().openCamera();
  attach(cameraDescription(2));
  EXPECT_EQ(heard, 1);
  accessory().closeCamera();
  attach(cameraDescription(3));
  EXPECT_EQ(heard, 1);
}

// A clock that somebody reads while something else happens.
class InterruptedClock final : public platform::Clock {
 public:
  double absoluteTime() const override {
    if (const auto act = std::exchange(interruption, nullptr)) act();
    return seconds;
  }
  void sleepFor(double) override {}

  double seconds = 1000;
  mutable std::function<void()> interruption;
};

TEST(InterruptedTickTest, LeavesAStatusThatChangedDuringTheTickAsItIs) {
  platform::SimulatedPlatform host;
  InterruptedClock clock;
  CameraStack stack(platform::Ports{clock, host.ports().threads, host.ports().queues, host.ports().accessories,
                                    host.ports().notifications});
  host.plug(cameraDescription());
  ZELCameraAccessory& accessory = stack.accessory();
  accessory.openCamera();
  accessory.receivedData();
  ASSERT_EQ(accessory.status(), 2u);
  clock.seconds += 4;  // longer than a camera may be silent
  clock.interruption = [&] { accessory.successCreateSession(); };
  accessory.onDetectTimer();
  EXPECT_EQ(accessory.status(), 1u);
}

TEST_F(ZELCameraAccessoryTest, OpensNoTunnel) { EXPECT_FALSE(accessory().tunnelService().open()); }

}  // namespace
}  // namespace zel::test

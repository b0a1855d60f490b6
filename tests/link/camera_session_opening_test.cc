// What must stand before a session's first byte is read, and what is left where a session cannot be had.

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/platform/forwarding.h>
#include <ZELTarkaSDK/platform/notification_center.h>

#include "tests/link/simulated_camera.h"

namespace zel::test {
namespace {

using platform::StreamEvent;
using testing::ElementsAre;
using testing::IsEmpty;

// Runs a step after each thread that it starts, or has no thread to give.
class SteppingThreads final : public platform::Threads {
 public:
  explicit SteppingThreads(platform::Threads& platform) : platform_(platform) {}
  std::unique_ptr<platform::Thread> start(std::string name, platform::ThreadBody body) override {
    if (!available) return nullptr;
    auto thread = platform_.start(std::move(name), std::move(body));
    if (afterStart) afterStart();
    return thread;
  }
  platform::RunLoop& currentRunLoop() override { return platform_.currentRunLoop(); }

  bool available = true;
  std::function<void()> afterStart;

 private:
  platform::Threads& platform_;
};

// A wall clock that is set while the steady one goes on.
class SettableClock final : public platform::ForwardingClock {
 public:
  using ForwardingClock::ForwardingClock;
  double absoluteTime() const override { return ForwardingClock::absoluteTime() + ahead; }
  double steadyTime() const override { return ForwardingClock::absoluteTime(); }
  double ahead = 0;
};

class SessionOpeningTest : public testing::Test {
 protected:
  SessionOpeningTest() : threads(host.ports().threads), clock(host.ports().clock) {
    const platform::Ports& given = host.ports();
    stack.emplace(platform::Ports{clock, threads, given.queues, given.accessories, given.notifications});
    watch = accessory().observeStatus([this](std::uint64_t status) {
      statuses.push_back(status);
      if (onStatus) onStatus(status);
    });
  }

  ZELCameraAccessory& accessory() { return stack->accessory(); }
  platform::ScriptedLink& link() { return *camera->current(); }
  void plug() {
    camera = host.plug(cameraDescription());
    host.runUntilIdle();
  }
  void send(const Bytes& bytes) {
    link().send(bytes);
    host.runUntilIdle();
  }
  void openAndSynchronise() {
    plug();
    accessory().openCamera();
    send(join(kMarker, kFrame));
    send(kFrame);
    statuses.clear();
  }
  // The times of the clock exchanges that were asked for, in milliseconds since 2001.
  std::vector<std::int64_t> syncTimes() {
    const Bytes written = link().written();
    const Bytes head = bytes({0x10, 0, 0, 0, 4, 0, 0x49, 0x40});
    std::vector<std::int64_t> times;
    for (auto at = written.begin(); (at = std::search(at, written.end(), head.begin(), head.end())) != written.end();) {
      at += 8;
      times.push_back(static_cast<std::int64_t>(loadLittleEndian<std::uint64_t>(&*at)));
    }
    return times;
  }

  static inline const Bytes kFrame = bytes({7, 0, 0, 0, 2, 0, 5});

  platform::SimulatedPlatform host;
  SteppingThreads threads;
  SettableClock clock;
  std::shared_ptr<platform::ScriptedAccessory> camera;
  std::vector<std::uint64_t> statuses;
  std::function<void(std::uint64_t)> onStatus;
  std::optional<CameraStack> stack;
  Observation watch;
};

// A thread that is quick enough sees the marker before the opening has returned.
TEST_F(SessionOpeningTest, ParsesNoByteBeforeTheFirmwareIsKnown) {
  threads.afterStart = [this] {
    link().send(join(kMarker, kFrame));
    host.runUntilIdle();
  };
  camera = host.plug(cameraDescription());
  accessory().openCamera();
  host.runUntilIdle();
  EXPECT_EQ(syncTimes().size(), 1u);
  EXPECT_EQ(stack->statistics().markersFound, 1u);
}

TEST_F(SessionOpeningTest, ParsesNoByteBeforeTheFirmwareOfACameraThatArrivesIsKnown) {
  accessory().openCamera();
  threads.afterStart = [this] {
    link().send(kMarker);
    link().send(kFrame);
  };
  onStatus = [this](std::uint64_t status) {
    if (status == 1) host.runUntilIdle();
  };
  plug();
  EXPECT_EQ(syncTimes().size(), 1u);
}

TEST_F(SessionOpeningTest, KeepsNothingOfACameraWhoseSessionIsRefused) {
  plug();
  camera->refuseSessions(true);
  EXPECT_EQ(accessory().openCamera(), nullptr);
  EXPECT_EQ(accessory().accessoryInfo(), nullptr);
  EXPECT_EQ(accessory().firewareVersion(), 0);
  EXPECT_THAT(statuses, IsEmpty());
}

TEST_F(SessionOpeningTest, AnnouncesNothingWhereThereIsNoThread) {
  plug();
  threads.available = false;
  EXPECT_EQ(accessory().openCamera(), nullptr);
  host.advance(10);
  EXPECT_THAT(statuses, IsEmpty());
  EXPECT_EQ(accessory().accessoryInfo(), nullptr);
  EXPECT_TRUE(link().isClosed());
}

TEST_F(SessionOpeningTest, OpensTheNextSessionWhereThereIsAThreadAgain) {
  plug();
  threads.available = false;
  accessory().openCamera();
  accessory().closeCamera();
  threads.available = true;
  EXPECT_NE(accessory().openCamera(), nullptr);
  send(join(kMarker, kFrame));
  send(kFrame);
  EXPECT_THAT(statuses, ElementsAre(1u, 2u));
}

TEST_F(SessionOpeningTest, FallsSilentWhereAReopeningHasNoThread) {
  openAndSynchronise();
  threads.available = false;
  link().fire(StreamEvent::errorOccurred);
  host.runUntilIdle();
  EXPECT_THAT(statuses, IsEmpty());
  host.advance(5);
  EXPECT_THAT(statuses, ElementsAre(3u));
  EXPECT_EQ(host.liveThreads("session thread"), 0);
}

TEST_F(SessionOpeningTest, ConnectsToNobodyWhereItsAnnouncementClosesIt) {
  std::vector<std::string> posted;
  const auto connected = host.ports().notifications.observe(
      kZELCameraDidConnectNotification, [&](const platform::Notification& one) { posted.push_back(one.name); });
  accessory().openCamera();
  onStatus = [this](std::uint64_t status) {
    if (status == 1) accessory().closeCamera();
  };
  plug();
  EXPECT_THAT(posted, IsEmpty());
  EXPECT_EQ(accessory().accessoryInfo(), nullptr);
  EXPECT_EQ(accessory().openCamera(), nullptr);
  EXPECT_EQ(accessory().accessoryInfo(), nullptr);
  EXPECT_THAT(statuses, ElementsAre(1u, 0u, 1u, 0u));
  host.runUntilIdle();
  EXPECT_EQ(host.liveThreads("session thread"), 0);
}

TEST_F(SessionOpeningTest, TellsThatASessionWasClosedInItsAnnouncement) {
  plug();
  onStatus = [this](std::uint64_t status) {
    if (status == 1) accessory().cameraSession().closeSession();
  };
  bool accepted = false;
  EXPECT_FALSE(
      accessory().cameraSession().openSessionWithAccessory(camera, "com.zelcam.ucd", [&] { accepted = true; }));
  EXPECT_FALSE(accepted);
}

// The clock of the link

TEST_F(SessionOpeningTest, SeesASilenceThroughAClockThatIsSetBack) {
  openAndSynchronise();
  clock.ahead = -600;
  host.advance(4.5);
  EXPECT_THAT(statuses, ElementsAre(3u));
}

TEST_F(SessionOpeningTest, TakesAClockThatIsSetAheadForNoSilence) {
  openAndSynchronise();
  clock.ahead = 5;
  host.advance(1.5);
  send(kFrame);
  host.advance(1.5);
  EXPECT_THAT(statuses, IsEmpty());
}

TEST_F(SessionOpeningTest, MeasuresTheRoundTripThroughAClockThatIsSet) {
  plug();
  accessory().openCamera();
  send(join(kMarker, kFrame));
  clock.ahead = 3600;
  host.advance(0.0105);
  send(bytes({9, 0, 0, 0, 4, 0, 0x49, 0xC0, 0}));
  send(kFrame);
  EXPECT_EQ(accessory().syncRoundTrip(), 10);
  EXPECT_EQ(accessory().timeOffset(), 700'000'000'005);
}

TEST_F(SessionOpeningTest, TellsTheCameraTheTimeOfAClockThatWasSetBeforeTheOpening) {
  openAndSynchronise();
  clock.ahead = 3600;
  link().fire(StreamEvent::errorOccurred);
  host.runUntilIdle();
  send(join(kMarker, kFrame));
  EXPECT_THAT(syncTimes(), ElementsAre(700'003'600'000));
}

}  // namespace
}  // namespace zel::test

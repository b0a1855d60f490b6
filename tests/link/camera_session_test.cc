#include "link/camera_session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "tests/link/simulated_camera.h"
#include "tests/link/watched_streams.h"

namespace zel::test {
namespace {

using platform::StreamEvent;
using testing::ElementsAre;
using testing::IsEmpty;

class CameraSessionTest : public SimulatedCameraTest {
 protected:
  void write(const Bytes& bytes) {
    session().writeData(ZELData(bytes));
    host.runUntilIdle();
  }
};

const Bytes kReplyWithoutBody = bytes({8, 0, 0, 0, 4, 0, 0x0B, 0x80});

TEST_F(CameraSessionTest, RunsASessionThreadWhileItIsOpen) {
  open();
  EXPECT_EQ(host.liveThreads("session thread"), 1);
  accessory().closeCamera();
  host.runUntilIdle();
  EXPECT_EQ(host.liveThreads("session thread"), 0);
}

TEST_F(CameraSessionTest, LooksForTheMarkerInAFreshSession) {
  open();
  EXPECT_TRUE(stack.parser().isNeedDataSynchronism());
}

TEST_F(CameraSessionTest, ParsesOnceMoreOnAnEventWithoutBytes) {
  open();
  send(join(kMarker, kAudioFrame));  // what follows the marker waits for the next call
  EXPECT_EQ(stack.statistics().frames[2], 0u);
  link().fire(StreamEvent::hasBytesAvailable);
  host.runUntilIdle();
  EXPECT_EQ(stack.statistics().frames[2], 1u);
}

TEST_F(CameraSessionTest, ReadsABurstWholeBeforeItParsesOnce) {
  open();
  link().setReadLimit(3);
  send(join(kMarker, kAudioFrame));  // seventeen bytes, six reads
  EXPECT_FALSE(stack.parser().isNeedDataSynchronism());
  EXPECT_EQ(stack.statistics().frames[2], 0u);
}

TEST_F(CameraSessionTest, AppendsNothingOfAFailedRead) {
  open();
  link().failReads();
  link().fire(StreamEvent::hasBytesAvailable);
  host.runUntilIdle();
  EXPECT_EQ(stack.statistics().bytesReceived, 0u);
}

TEST_F(CameraSessionTest, WritesFramesWholeAndInOrder) {
  openAndSynchronise();
  session().writeData(ZELData(repeated(1000, 1)));
  session().writeData(ZELData(repeated(1000, 2)));
  host.runUntilIdle();
  EXPECT_EQ(link().written(), join(repeated(1000, 1), repeated(1000, 2)));
}

TEST_F(CameraSessionTest, WritesNothingInsideTheCall) {
  openAndSynchronise();
  session().writeData(ZELData(bytes({1})));
  EXPECT_THAT(link().written(), IsEmpty());
}

TEST_F(CameraSessionTest, WritesFromAPointerAndALength) {
  openAndSynchronise();
  const Bytes data = bytes({1, 2, 3});
  session().writeData(data.data(), 2);
  session().writeData(data.data(), 0);
  session().writeData(data.data(), -1);
  host.runUntilIdle();
  EXPECT_EQ(link().written(), bytes({1, 2}));
}

TEST_F(CameraSessionTest, WritesASingleByteFromAPointer) {
  openAndSynchronise();
  const Bytes data = bytes({7});
  session().writeData(data.data(), 1);
  host.runUntilIdle();
  EXPECT_EQ(link().written(), bytes({7}));
}

TEST_F(CameraSessionTest, KeepsWhatTheStreamDoesNotAcceptForTheNextSpaceEvent) {
  openAndSynchronise();
  link().setWriteCapacity(100);
  write(join(repeated(100, 1), repeated(100, 2), repeated(100, 3)));
  EXPECT_EQ(link().written(), repeated(100, 1));
  link().setWriteCapacity(1000);
  host.runUntilIdle();
  EXPECT_EQ(link().written(), join(repeated(100, 1), repeated(100, 2), repeated(100, 3)));
}

TEST_F(CameraSessionTest, CountsWhatIsWrittenAndWhatStillWaits) {
  openAndSynchronise();
  const std::uint64_t before = stack.statistics().bytesWritten;
  link().setWriteCapacity(100);
  write(repeated(250, 1));
  EXPECT_EQ(stack.statistics().bytesWritten - before, 100u);
  EXPECT_EQ(stack.statistics().bytesToWrite, 150u);
  link().setWriteCapacity(1000);
  host.runUntilIdle();
  EXPECT_EQ(stack.statistics().bytesWritten - before, 250u);
  EXPECT_EQ(stack.statistics().bytesToWrite, 0u);
}

TEST_F(CameraSessionTest, HasNothingToWriteOnceItIsClosed) {
  openAndSynchronise();
  link().setWriteCapacity(100);
  write(repeated(250, 1));
  session().closeSession();
  EXPECT_EQ(stack.statistics().bytesToWrite, 0u);
}

TEST_F(CameraSessionTest, LosesWhatIsWrittenWhileClosed) {
  openAndSynchronise();
  session().closeSession();
  session().writeData(ZELData(bytes({1, 2, 3})));
  session().openSessionWithAccessory(camera, "com.zelcam.ucd");
  host.runUntilIdle();
  EXPECT_THAT(link().written(), IsEmpty());
}

TEST_F(CameraSessionTest, ReopensAtOnceAfterAStreamError) {
  openAndSynchronise();
  send(bytes({8, 0, 0}));
  const auto former = link().shared_from_this();
  link().fire(StreamEvent::errorOccurred);
  host.runUntilIdle();
  EXPECT_TRUE(former->isClosed());
  EXPECT_FALSE(link().isClosed());
  EXPECT_EQ(camera->sessionsOpened(), 2);
  EXPECT_EQ(accessory().status(), 1u);
  EXPECT_TRUE(stack.parser().isNeedDataSynchronism());
  EXPECT_THAT(stack.parser().data(), IsEmpty());
  EXPECT_EQ(stack.statistics().streamErrors, 1u);
  EXPECT_EQ(host.liveThreads("session thread"), 1);
}

TEST_F(CameraSessionTest, AnswersAfterAReopening) {
  openAndSynchronise();
  link().fire(StreamEvent::errorOccurred);
  host.runUntilIdle();
  send(join(kMarker, kAudioFrame));
  send(kAudioFrame);
  EXPECT_EQ(accessory().status(), 2u);
}

TEST_F(CameraSessionTest, StaysClosedWhenAReopeningIsRefused) {
  openAndSynchronise();
  camera->refuseSessions(true);
  link().fire(StreamEvent::errorOccurred);
  host.runUntilIdle();
  EXPECT_FALSE(session().isOpen());
  EXPECT_EQ(host.liveThreads("session thread"), 0);
  host.advance(4.5);
  EXPECT_EQ(accessory().status(), 3u);
}

TEST_F(CameraSessionTest, IgnoresTheEndOfTheStream) {
  openAndSynchronise();
  link().end();
  host.runUntilIdle();
  EXPECT_TRUE(session().isOpen());
  EXPECT_EQ(camera->sessionsOpened(), 1);
}

TEST_F(CameraSessionTest, ReopensWhenThePositionInTheStreamIsLost) {
  openAndSynchronise();
  send(bytes({5, 0, 0, 0, 1, 0, 9, 9}));
  EXPECT_EQ(camera->sessionsOpened(), 2);
  EXPECT_EQ(accessory().status(), 1u);
  EXPECT_EQ(stack.statistics().positionsLost, 1u);
  EXPECT_TRUE(stack.parser().isNeedDataSynchronism());
}

TEST_F(CameraSessionTest, SendsSixteenBytesToSynchroniseTheClock) {
  host.setNow(1000.0);
  open();
  send(join(kMarker, bytes({7})));
  EXPECT_EQ(session().syncTimestamp(), 1000000);
  EXPECT_EQ(link().written(), bytes({0x10, 0, 0, 0,                       // length 16
                                     4, 0,                                // data type: message
                                     0x49, 0x40,                          // code
                                     0x40, 0x42, 0x0F, 0, 0, 0, 0, 0}));  // 1,000,000 ms
}

TEST_F(CameraSessionTest, PutsTheClockFrameBehindWhatIsQueued) {
  openAndSynchronise();
  link().setWriteCapacity(0);
  write(bytes({1, 2}));
  session().sendSyncTimeCmd();
  host.runUntilIdle();
  link().setWriteCapacity(100);
  host.runUntilIdle();
  ASSERT_EQ(link().written().size(), 18u);
  EXPECT_EQ(link().written()[0], 1);
  EXPECT_EQ(link().written()[2], 0x10);
}

TEST_F(CameraSessionTest, RefusesAnAccessoryThatCannotBeOpenedButClosesTheOneBefore) {
  openAndSynchronise();
  const auto other = host.plug(cameraDescription(9));
  other->refuseSessions(true);
  EXPECT_FALSE(session().openSessionWithAccessory(other, "com.zelcam.ucd"));
  EXPECT_FALSE(session().isOpen());
}

TEST_F(CameraSessionTest, ServesTheSecondOfTwoSessionsOpenedInARow) {
  attach();
  accessory().openCamera();
  session().openSessionWithAccessory(camera, "com.zelcam.ucd");
  host.runUntilIdle();
  send(join(kMarker, kAudioFrame));
  send(kAudioFrame);
  EXPECT_EQ(accessory().status(), 2u);
  EXPECT_EQ(host.liveThreads("session thread"), 1);
}

TEST_F(CameraSessionTest, ForgetsWhatTheDemultiplexerHeldBeforeTheFirstOpening) {
  const Bytes old = bytes({8, 0, 0, 0, 1});
  stack.parser().appendBytes(old.data(), old.size());
  open();
  EXPECT_THAT(stack.parser().data(), IsEmpty());
}

TEST_F(CameraSessionTest, DeliversNothingMoreOnceAFrameHasClosedIt) {
  openAndSynchronise();
  stack.parser().registerMsgParser(
      CameraMsgParser(1, [this](std::uint64_t, const auto&, void*) { accessory().closeCamera(); }), 0x800B);
  const std::uint64_t before = stack.statistics().frames[2];
  send(join(kReplyWithoutBody, kAudioFrame));
  EXPECT_EQ(stack.statistics().frames[2], before);
  EXPECT_EQ(accessory().status(), 0u);
}

// The frame that opened it anew still counts as one of the session before it, until that one's thread has ended.
TEST_F(CameraSessionTest, IsOpenWithoutAFrameOnceTheThreadBeforeHasEnded) {
  openAndSynchronise();
  stack.parser().registerMsgParser(
      CameraMsgParser(1, [this](std::uint64_t, const auto&,
                                void*) { session().openSessionWithAccessory(camera, "com.zelcam.ucd"); }),
      0x800B);
  send(join(kReplyWithoutBody, kAudioFrame));
  EXPECT_EQ(accessory().status(), 1u);
  EXPECT_TRUE(stack.parser().isNeedDataSynchronism());
}

TEST_F(CameraSessionTest, StaysClosedWhereItsAnnouncementClosesIt) {
  const auto watch = accessory().observeStatus([this](std::uint64_t status) {
    if (status == 1) accessory().closeCamera();
  });
  open();
  EXPECT_FALSE(session().isOpen());
  EXPECT_EQ(accessory().status(), 0u);
  EXPECT_EQ(host.liveThreads("session thread"), 0);
}

// The thread of the session before ends meanwhile.
TEST_F(CameraSessionTest, ReadsNothingBeforeItIsAnnounced) {
  openAndSynchronise();
  const std::uint64_t markers = stack.statistics().markersFound;
  std::vector<std::uint64_t> markersThen;
  const auto watch = accessory().observeStatus([&](std::uint64_t) {
    send(join(kMarker, kAudioFrame));
    markersThen.push_back(stack.statistics().markersFound);
  });
  session().openSessionWithAccessory(camera, "com.zelcam.ucd");
  EXPECT_THAT(markersThen, ElementsAre(markers));
}

TEST_F(CameraSessionTest, IsNotReopenedForALostPositionOnceItIsClosed) {
  openAndSynchronise();
  session().closeSession();
  session().reopenAfterLostPosition();  // its thread has not ended yet
  host.runUntilIdle();
  EXPECT_FALSE(session().isOpen());
  EXPECT_EQ(camera->sessionsOpened(), 1);
}

TEST_F(CameraSessionTest, DoesNothingWhenAnAccessoryReportsItsDeparture) {
  openAndSynchronise();
  session().accessoryDidDisconnect(*camera);
  EXPECT_EQ(accessory().status(), 2u);
}

TEST_F(CameraSessionTest, LeavesNoThreadBehindWhenTheStackGoesAway) {
  {
    CameraStack other(host.ports());
    host.plug(cameraDescription(20));
    other.accessory().openCamera();
    host.runUntilIdle();
    EXPECT_EQ(host.liveThreads("session thread"), 1);
  }
  host.runUntilIdle();
  EXPECT_EQ(host.liveThreads("session thread"), 0);
}

TEST_F(CameraSessionTest, LetsAStackBeDestroyedFromInsideItsOwnSessionThread) {
  auto other = std::make_unique<CameraStack>(host.ports());
  const auto own = host.plug(cameraDescription(20));
  other->parser().registerMsgParser(
      CameraMsgParser(1, [&](std::uint64_t, const std::optional<ZELData>&, void*) { other.reset(); }), 0x800B);
  other->accessory().openCamera();
  host.runUntilIdle();
  own->current()->send(join(kMarker, bytes({8, 0, 0, 0, 4, 0, 0x0B, 0x80}), kAudioFrame));
  host.runUntilIdle();
  own->current()->fire(StreamEvent::hasBytesAvailable);
  host.runUntilIdle();
  EXPECT_EQ(other, nullptr);
  EXPECT_EQ(host.liveThreads("session thread"), 0);
}

// A camera stack whose streams are watched.
class WatchedSessionTest : public testing::Test {
 protected:
  CameraSession& session() { return stack.accessory().cameraSession(); }
  platform::ScriptedLink& link() { return *camera->current(); }

  void open() {
    stack.accessory().openCamera();
    host.runUntilIdle();
  }
  void send(const Bytes& bytes) {
    link().send(bytes);
    host.runUntilIdle();
  }
  // Has it done at the look of that number from now on, and never again.
  void atLook(int number, std::function<void()> act) {
    watch.onLook = [number, act = std::move(act)]() mutable {
      if (--number == 0) act();
    };
  }

  platform::SimulatedPlatform host;
  StreamWatch watch;
  WatchedAccessories accessories{host.ports().accessories, watch};
  std::shared_ptr<platform::ScriptedAccessory> camera = host.plug(cameraDescription());
  CameraStack stack{platform::Ports{host.ports().clock, host.ports().threads, host.ports().queues, accessories,
                                    host.ports().notifications}};
};

TEST_F(WatchedSessionTest, OpensTheInputBeforeTheOutput) {
  open();
  EXPECT_THAT(watch.calls, ElementsAre("input gets a delegate", "input joins the loop", "input opens",
                                       "output gets a delegate", "output joins the loop", "output opens"));
}

TEST_F(WatchedSessionTest, ClosesTheInputBeforeTheOutputAndLeavesNothingOfThemInItsLoop) {
  open();
  watch.calls.clear();
  session().closeSession();
  host.runUntilIdle();
  watch.calls.resize(6);  // what follows closes them again
  EXPECT_THAT(watch.calls, ElementsAre("input closes", "input leaves the loop", "input forgets its delegate",
                                       "output closes", "output leaves the loop", "output forgets its delegate"));
}

TEST_F(WatchedSessionTest, ReadsTwoMebibytesAtMostAndIntoOneBufferForAllSessions) {
  open();
  send(bytes({1}));
  send(bytes({2}));
  link().fire(StreamEvent::errorOccurred);
  host.runUntilIdle();
  send(bytes({3}));
  EXPECT_THAT(watch.readSizes, ElementsAre(2'097'152u, 2'097'152u, 2'097'152u));
  EXPECT_EQ(watch.readBuffers[1], watch.readBuffers[0]);
  EXPECT_EQ(watch.readBuffers[2], watch.readBuffers[0]);
}

TEST_F(WatchedSessionTest, TakesWhatAReadOfOneByteBrings) {
  open();
  link().setReadLimit(1);
  send(bytes({1, 2}));
  EXPECT_THAT(stack.parser().data(), ElementsAre(1, 2));
}

TEST_F(WatchedSessionTest, EndsABurstWithAReadThatBringsNothing) {
  open();
  watch.promisesBytes = true;
  link().fire(StreamEvent::hasBytesAvailable);
  host.runUntilIdle();
  EXPECT_EQ(watch.readSizes.size(), 1u);
}

TEST_F(WatchedSessionTest, ReadsNoMoreOfABurstInWhichItIsClosed) {
  open();
  link().setReadLimit(1);
  atLook(2, [this] { session().closeSession(); });
  send(bytes({1, 2, 3, 4, 5}));
  EXPECT_EQ(watch.readSizes.size(), 2u);
}

TEST_F(WatchedSessionTest, StopsWritingWhereTheStreamTakesNothingAlthoughItHasSpace) {
  open();
  watch.refusedWrites = 3;
  session().writeData(ZELData(bytes({1, 2})));
  host.runUntilIdle();
  EXPECT_EQ(watch.refusedWrites, 2);
  EXPECT_THAT(link().written(), IsEmpty());
}

// What its thread had read before the session was opened anew, and takes in only afterwards.
TEST_F(WatchedSessionTest, DropsALastReadOfTheSessionBefore) {
  open();
  link().setReadLimit(11);
  atLook(2, [this] { session().openSessionWithAccessory(camera, "com.zelcam.ucd"); });
  send(join(kMarker, bytes({9}), kMarker, bytes({9})));
  EXPECT_EQ(camera->sessionsOpened(), 2);
  EXPECT_THAT(stack.parser().data(), IsEmpty());
  EXPECT_TRUE(stack.parser().isNeedDataSynchronism());
}

TEST_F(WatchedSessionTest, StaysClosedWhereItIsClosedWhileItConnects) {
  watch.onConnect = [this] { session().closeSession(); };
  EXPECT_FALSE(session().openSessionWithAccessory(camera, "com.zelcam.ucd"));
  host.runUntilIdle();
  EXPECT_FALSE(session().isOpen());
  EXPECT_EQ(stack.accessory().status(), 0u);
  EXPECT_EQ(host.liveThreads("session thread"), 0);
}

TEST_F(WatchedSessionTest, GoesToWhoOpenedItWhileItConnectedForAnother) {
  const auto other = host.plug(cameraDescription(9));
  watch.onConnect = [&] {
    watch.onConnect = [] {};
    EXPECT_TRUE(session().openSessionWithAccessory(other, "com.zelcam.ucd"));
  };
  EXPECT_FALSE(session().openSessionWithAccessory(camera, "com.zelcam.ucd"));
  host.runUntilIdle();
  EXPECT_FALSE(other->current()->isClosed());
  EXPECT_TRUE(camera->current()->isClosed());
}

}  // namespace
}  // namespace zel::test

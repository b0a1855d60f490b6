// A stack may go inside any call that it makes to the host. Meant for the sanitizers as much as for what it claims.

#include <ZELTarkaSDK/CameraStack.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <ZELTarkaSDK/ZELCameraManager.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <ZELTarkaSDK/platform/notification_center.h>

#include "live/live_parts.h"
#include "platform/simulated/scripted_video_decoder.h"
#include "platform/simulated/simulated_platform.h"
#include "tests/link/simulated_camera.h"

namespace zel::test {
namespace {

using platform::StreamEvent;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

const Bytes kFrame = bytes({7, 0, 0, 0, 2, 0, 5});
const Bytes kBatteryEvent = bytes({10, 0, 0, 0, 4, 0, 0x03, 0x60, 1, 40});

class DestroyingReceiver final : public ZELCameraNotificationProtocol {
 public:
  explicit DestroyingReceiver(std::function<void()> act) : act_(std::move(act)) {}
  void notificationType(std::int64_t, const std::optional<ZELMessageFields>&) override { act_(); }

 private:
  const std::function<void()> act_;
};

class DestructionTest : public testing::Test {
 protected:
  DestructionTest() {
    platform::Ports ports = host.ports();
    ports.videoDecoders = &decoders;
    stack = std::make_unique<CameraStack>(ports);
    destroy = [this] {
      ++destroyed;
      stack = nullptr;
      observation.reset();
      notification.reset();
    };
  }

  void plug() {
    camera = host.plug(cameraDescription());
    host.runUntilIdle();
  }
  void openAndSynchronise() {
    stack->accessory().openCamera();
    plug();
    send(join(kMarker, kFrame));
    send(kFrame);
    ASSERT_EQ(stack->accessory().status(), 2u);
  }
  void send(const Bytes& bytes) {
    camera->current()->send(bytes);
    host.runUntilIdle();
  }
  void destroyAtStatus(std::uint64_t wanted) {
    observation = stack->accessory().observeStatus([this, wanted](std::uint64_t status) {
      if (status == wanted && stack) destroy();
    });
  }
  void destroyAtNotification(std::string_view name) {
    notification = host.ports().notifications.observe(name, [this](const platform::Notification&) {
      if (stack) destroy();
    });
  }
  void expectGone() {
    host.advance(10);
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(stack, nullptr);
    EXPECT_EQ(host.liveThreads("session thread"), 0);
    if (camera && camera->current()) {
      EXPECT_TRUE(camera->current()->isClosed());
    }
  }
  // For handlers: notes what they get, and lets the stack go inside.
  auto destroying(const std::string& name) {
    return [this, name](const std::optional<ZELError>& error, const auto&...) {
      log.push_back(name + (error ? " " + std::to_string(error->code) : " done"));
      if (stack) destroy();
    };
  }

  platform::SimulatedPlatform host;
  platform::ScriptedVideoDecoders decoders;
  std::vector<std::string> log;
  std::shared_ptr<platform::ScriptedAccessory> camera;
  std::unique_ptr<CameraStack> stack;
  Observation observation;
  std::unique_ptr<platform::NotificationObservation> notification;
  std::function<void()> destroy;
  int destroyed = 0;
};

TEST_F(DestructionTest, InsideStatusOneOfACameraThatIsThere) {
  plug();
  destroyAtStatus(1);
  EXPECT_EQ(stack->accessory().openCamera(), nullptr);
  expectGone();
}

TEST_F(DestructionTest, InsideStatusOneWithASecondCameraThatIsNotTried) {
  plug();
  const auto other = host.plug(cameraDescription(8));
  host.runUntilIdle();
  destroyAtStatus(1);
  EXPECT_EQ(stack->accessory().openCamera(), nullptr);
  expectGone();
  EXPECT_EQ(other->sessionsOpened(), 0);
}

TEST_F(DestructionTest, InsideStatusOneOfACameraThatArrives) {
  destroyAtStatus(1);
  stack->accessory().openCamera();
  plug();
  expectGone();
}

TEST_F(DestructionTest, InsideStatusTwoOnTheSessionThread) {
  stack->accessory().openCamera();
  plug();
  destroyAtStatus(2);
  send(join(kMarker, kFrame));
  send(kFrame);
  expectGone();
}

TEST_F(DestructionTest, InsideStatusThreeOfTheDetectTimer) {
  openAndSynchronise();
  destroyAtStatus(3);
  host.advance(5);
  expectGone();
}

TEST_F(DestructionTest, InsideStatusZeroOfTheHostsOwnClose) {
  openAndSynchronise();
  destroyAtStatus(0);
  stack->accessory().closeCamera();
  expectGone();
}

TEST_F(DestructionTest, InsideStatusZeroOfADeparture) {
  openAndSynchronise();
  destroyAtStatus(0);
  host.unplug(camera);
  expectGone();
}

TEST_F(DestructionTest, InsideStatusOneOfAReopening) {
  openAndSynchronise();
  destroyAtStatus(1);
  camera->current()->fire(StreamEvent::errorOccurred);
  expectGone();
}

TEST_F(DestructionTest, InsideStatusOneOfALostPosition) {
  openAndSynchronise();
  destroyAtStatus(1);
  send(bytes({0, 0, 0, 0, 0, 0}));
  expectGone();
}

TEST_F(DestructionTest, InsideTheDidConnectNotification) {
  destroyAtNotification(kZELCameraDidConnectNotification);
  stack->accessory().openCamera();
  plug();
  expectGone();
}

TEST_F(DestructionTest, InsideTheDidDisConnectNotification) {
  openAndSynchronise();
  destroyAtNotification(kZELCameraDidDisConnectNotification);
  host.unplug(camera);
  expectGone();
}

TEST_F(DestructionTest, InsideThePlatformsDepartureBeforeItIsHeard) {
  openAndSynchronise();
  stack->accessory().closeCamera();
  destroyAtNotification(platform::kAccessoryDidDisconnectNotification);  // now before the stack's own observer
  stack->accessory().openCamera();
  host.runUntilIdle();
  host.unplug(camera);
  expectGone();
}

TEST_F(DestructionTest, InsideAnEvent) {
  openAndSynchronise();
  stack->ucd().addCameraNotificationReceiver(std::make_shared<DestroyingReceiver>(destroy));
  send(kBatteryEvent);
  expectGone();
}

TEST_F(DestructionTest, InsideAnEventThatTheHostSendsItself) {
  openAndSynchronise();
  stack->ucd().addCameraNotificationReceiver(std::make_shared<DestroyingReceiver>(destroy));
  stack->ucd().sendNotification(2, std::nullopt);
  expectGone();
}

TEST_F(DestructionTest, InsideABatteryNotification) {
  openAndSynchronise();
  stack->manager().registerForCameraNotifications();
  destroyAtNotification(ZELCameraNotificationBatteryChange);
  send(kBatteryEvent);
  expectGone();
}

TEST_F(DestructionTest, InsideTheHandlerOfARequestThatOthersWaitBeside) {
  openAndSynchronise();
  stack->ucd().msgReqSetFlicker(1, destroying("flicker"));
  stack->ucd().msgReqSetWBMode(1, destroying("white balance"));
  stack->ucd().sendFileWithType(1, "a", ZELData(bytes({1})), destroying("upload"));
  send(bytes({9, 0, 0, 0, 4, 0, 0x23, 0xC0, 1}));
  expectGone();
  EXPECT_THAT(log, ElementsAre("flicker done", "white balance 100", "upload 100"));
}

TEST_F(DestructionTest, InsideAPhotosHandlers) {
  openAndSynchronise();
  stack->ucd().msgCmdShutterWithGps({}, {}, {}, destroying("reply"), destroying("photo"));
  host.unplug(camera);
  expectGone();
  EXPECT_THAT(log, ElementsAre("reply 100", "photo 100"));
}

TEST_F(DestructionTest, InsideTheHandlerOfAnUploadOnTheSessionThread) {
  openAndSynchronise();
  stack->ucd().sendFileWithType(1, "a", ZELData(bytes({1})), destroying("upload"));
  send(join(bytes({13, 0, 0, 0, 9, 0}), bytes({0, 0, 2, 0, 0, 0, 'a'})));
  expectGone();
  EXPECT_THAT(log, ElementsAre("upload done"));
}

TEST_F(DestructionTest, InsideTheHandlerOfABitrateThatTheFirmwareIsTooOldFor) {
  stack->accessory().openCamera();
  camera = host.plug(cameraDescription(7, "E1_189"));
  host.runUntilIdle();
  send(join(kMarker, kFrame));
  send(kFrame);
  stack->manager().setCameraAudioBitrate(1, destroying("bitrate"));
  expectGone();
  EXPECT_THAT(log, ElementsAre("bitrate 120"));
}

TEST_F(DestructionTest, InsideAConsumerOfRegisteredData) {
  openAndSynchronise();
  stack->parser().registerDataParser(
      ZELCameraDataParser(7, {}, [this](const std::shared_ptr<void>&, ByteView) { destroy(); }), 7);
  send(bytes({7, 0, 0, 0, 7, 0, 1}));
  expectGone();
}

class MediaListener final : public ZELCameraMediaDataDelegate {
 public:
  explicit MediaListener(std::function<void()> act) : act_(std::move(act)) {}
  void onH264Nalu(Bytes, bool, std::int64_t) override { act_(); }
  void onSps(Bytes, Bytes) override {}
  void onAACHeader(Bytes) override {}
  void onAACAdts(Bytes, std::int64_t) override {}

 private:
  const std::function<void()> act_;
};

Bytes videoFrame(std::initializer_list<int> unit) {
  return join(bytes({10 + static_cast<int>(unit.size()), 0, 0, 0, 1, 0}), bytes({0, 0, 0, 1}), bytes(unit));
}

TEST_F(DestructionTest, InsideAMediaDelegate) {
  const auto player = stack->suitablePreviewPlayer();
  const auto listener = std::make_shared<MediaListener>([this] {
    if (stack) destroy();
  });
  player->setMediaDataDelegate(listener);
  openAndSynchronise();
  for (const Bytes& frame :
       {videoFrame({0x67, 1}), videoFrame({0x68, 2}), videoFrame({0x65, 3}), videoFrame({0x41, 4})}) {
    send(frame);
  }
  expectGone();
}

TEST_F(DestructionTest, InsideASnapshotOnTheDecodeThread) {
  const auto player = stack->suitablePreviewPlayer();
  player->createSnapshot([this](const auto&) { destroy(); });
  openAndSynchronise();
  for (const Bytes& frame :
       {videoFrame({0x67, 1}), videoFrame({0x68, 2}), videoFrame({0x65, 3}), videoFrame({0x41, 4})}) {
    send(frame);
  }
  expectGone();
  EXPECT_EQ(host.liveThreads("preview decode"), 0);
}

// What waits when a stack goes.
class LastAnswers : public DestructionTest {
 protected:
  auto noting(const std::string& name) {
    return [this, name](const std::optional<ZELError>& error, const auto&...) {
      log.push_back(name + (error ? " " + std::to_string(error->code) : " done"));
    };
  }
  void go() {
    stack = nullptr;
    host.runUntilIdle();
    host.advance(10);
  }
};

TEST_F(LastAnswers, AreOneEachForRequestsAPhotoAndAnUpload) {
  openAndSynchronise();
  stack->ucd().msgReqSetFlicker(1, noting("flicker"));
  stack->ucd().msgCmdShutterWithGps({}, {}, {}, noting("reply"), noting("photo"));
  stack->ucd().sendFileWithType(1, "a", ZELData(bytes({1})), noting("upload"));
  go();
  EXPECT_THAT(log, UnorderedElementsAre("reply 100", "flicker 100", "photo 100", "upload 100"));
}

TEST_F(LastAnswers, ReachASeriesAsWell) {
  openAndSynchronise();
  stack->ucd().msgCmdShutterAEBWithGps({}, {}, {}, {3, {}}, std::nullopt, nullptr, noting("series"));
  go();
  EXPECT_THAT(log, ElementsAre("series 100"));
}

TEST_F(LastAnswers, ReachAPhotoWithoutAReplyHandlerAndWithoutALink) {
  stack->ucd().msgCmdShutterWithGps({}, {}, {}, nullptr, noting("photo"));
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre());  // nobody fails it before
  go();
  EXPECT_THAT(log, ElementsAre("photo 100"));
}

TEST_F(LastAnswers, ReachAnUploadAndAMarkerRequestWithoutALink) {
  stack->ucd().sendFileWithType(1, "a", ZELData(bytes({1})), noting("upload"));
  stack->ucd().msgReqSendSyncData(ZELData(bytes({1})), [this](const auto& reply) {
    log.push_back("marker " + std::to_string(reply->template get<ZELError>("NSError")->code));
  });
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre());
  go();
  EXPECT_THAT(log, UnorderedElementsAre("marker 100", "upload 100"));
}

TEST_F(LastAnswers, ReachAnUploadThatALiveSourcesPartsSentAfterTheStack) {
  std::optional<LiveParts> parts = stack->liveParts();
  go();
  parts->ucd->sendFileWithType(1, "a", ZELData(bytes({1})), noting("upload"));
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre());
  parts.reset();
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("upload 100"));
}

// Deliberate: who is replaced is not answered, now or later.
TEST_F(LastAnswers, DoNotReachWhoWasReplaced) {
  openAndSynchronise();
  stack->ucd().msgReqSetFlicker(1, noting("first"));
  stack->ucd().msgReqSetFlicker(2, noting("second"));
  stack->ucd().msgCmdShutterWithGps({}, {}, {}, nullptr, noting("first photo"));
  stack->ucd().msgCmdShutterWithGps({}, {}, {}, nullptr, noting("second photo"));
  go();
  EXPECT_THAT(log, UnorderedElementsAre("second 100", "second photo 100"));
}

// Deliberate: the capture that is failed is the one of the moment, which a retry has just begun.
TEST_F(LastAnswers, ARetryInsideTheRefusedCapturesHandlerGetsItsRefusal) {
  openAndSynchronise();
  stack->ucd().msgCmdShutterWithGps(
      {}, {}, {},
      [this](const std::optional<ZELError>& error, auto...) {
        log.push_back("reply " + std::to_string(error ? error->code : 0));
        stack->ucd().msgCmdShutterWithGps({}, {}, {}, nullptr, noting("retry"));
      },
      noting("photo"));
  send(bytes({8, 0, 0, 0, 4, 0, 0x07, 0x80}));  // no body: refused
  EXPECT_THAT(log, ElementsAre("reply 101", "retry 101"));
  go();
  EXPECT_THAT(log, ElementsAre("reply 101", "retry 101"));
}

// What a replaced handler holds goes without the engine's lock, and may be the stack itself.
TEST_F(LastAnswers, AReplacedHandlerMayHoldWhatTakesTheLock) {
  openAndSynchronise();
  struct Asking {
    explicit Asking(CameraStack& asked) : stack(asked) {}
    CameraStack& stack;
    ~Asking() { stack.ucd().responseCameraErrorMsg(52); }
  };
  auto asking = std::make_shared<Asking>(*stack);
  stack->ucd().msgReqSetFlicker(1, [asking](const auto&) {});
  asking = nullptr;
  stack->ucd().msgReqSetFlicker(2, noting("second"));
  host.runUntilIdle();
  EXPECT_THAT(log, ElementsAre("second 101"));
}

}  // namespace
}  // namespace zel::test

#include <ZELTarkaSDK/CameraStack.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "platform/simulated/scripted_video_decoder.h"
#include "tests/link/simulated_camera.h"

namespace zel::test {
namespace {

class CameraStackTest : public SimulatedCameraTest {};

TEST_F(CameraStackTest, DrivesTwoCamerasSideBySide) {
  CameraStack first(host.ports(), "E1A0001");
  CameraStack second(host.ports(), "E1A0002");
  const auto one = host.plug(cameraDescription(1));
  const auto two = host.plug(cameraDescription(2, "E1_189"));
  first.accessory().openCamera();
  second.accessory().openCamera();
  host.runUntilIdle();
  one->current()->send(join(kMarker, kAudioFrame));
  host.runUntilIdle();
  one->current()->send(kAudioFrame);
  host.runUntilIdle();
  EXPECT_EQ(first.accessory().status(), 2u);
  EXPECT_EQ(second.accessory().status(), 1u);
  EXPECT_EQ(first.accessory().firewareVersion(), 192);
  EXPECT_EQ(second.accessory().firewareVersion(), 189);
  host.unplug(one);
  host.runUntilIdle();
  EXPECT_EQ(first.accessory().status(), 0u);
  EXPECT_EQ(second.accessory().status(), 1u);
}

TEST_F(CameraStackTest, StartsNothingBeforeItIsOpened) {
  attach();
  host.advance(10);
  EXPECT_EQ(host.liveThreads("session thread"), 0);
  EXPECT_EQ(accessory().status(), 0u);
}

TEST_F(CameraStackTest, TellsWhatTheLinkHasSeen) {
  openAndSynchronise();
  const LinkStatistics statistics = stack.statistics();
  EXPECT_EQ(statistics.markersFound, 1u);
  EXPECT_EQ(statistics.frames[2], 2u);
  EXPECT_EQ(statistics.bytes[2], 14u);
  EXPECT_EQ(statistics.dropped.noConsumer, 2u);
  EXPECT_EQ(statistics.bytesReceived, 24u);
  EXPECT_EQ(statistics.resendsLeft, 10);
  EXPECT_EQ(statistics.roundTrip, -1);
}

TEST_F(CameraStackTest, TellsTheLastClockExchangesRoundTrip) {
  openAndSynchronise();
  host.advance(0.004);
  send(bytes({9, 0, 0, 0, 4, 0, 0x49, 0xC0, 0}));
  EXPECT_EQ(stack.statistics().roundTrip, 4);
}

TEST_F(CameraStackTest, CountsTheErrorsOfItsStream) {
  openAndSynchronise();
  EXPECT_EQ(stack.statistics().streamErrors, 0u);
  link().fire(platform::StreamEvent::errorOccurred);
  host.runUntilIdle();
  EXPECT_EQ(stack.statistics().streamErrors, 1u);
}

TEST_F(CameraStackTest, HasEndedItsSessionThreadOnceItIsDestroyed) {
  auto other = std::make_unique<CameraStack>(host.ports());
  attach();
  other->accessory().openCamera();
  host.runUntilIdle();
  ASSERT_EQ(host.liveThreads("session thread"), 1);
  other.reset();
  EXPECT_EQ(host.liveThreads("session thread"), 0);
}

TEST_F(CameraStackTest, GivesBackEverythingOverTwoHundredPluggings) {
  accessory().openCamera();
  for (std::uint64_t cycle = 0; cycle < 200; ++cycle) {
    attach(cameraDescription(100 + cycle));
    send(join(kMarker, kAudioFrame));
    send(kAudioFrame);
    ASSERT_EQ(accessory().status(), 2u) << "cycle " << cycle;
    host.unplug(camera);
    host.runUntilIdle();
    ASSERT_EQ(accessory().status(), 0u) << "cycle " << cycle;
    ASSERT_EQ(host.liveThreads("session thread"), 0) << "cycle " << cycle;
  }
}

TEST(ReceiveLimitsTest, AllowFramesOf256MebibytesAndUnitsOf64UntilTheHostSetsOthers) {
  EXPECT_EQ(ReceiveLimits().frame, 268'435'456u);
  EXPECT_EQ(ReceiveLimits().unit, 67'108'864);
}

class PreviewTest : public SimulatedCameraTest {
 protected:
  PreviewTest() {
    platform::Ports ports = host.ports();
    ports.videoDecoders = &decoders;
    decodingStack.emplace(ports);
  }
  void openAndSynchronisePreview() {
    attach();
    decodingStack->accessory().openCamera();
    host.runUntilIdle();
    send(kMarker);
  }
  static Bytes videoFrame(std::initializer_list<int> unit) {
    return join(bytes({10 + static_cast<int>(unit.size()), 0, 0, 0, 1, 0}), bytes({0, 0, 0, 1}), bytes(unit));
  }
  static Bytes videoTimeFrame(int time) { return bytes({15, 0, 0, 0, 8, 0, 0, time, 0, 0, 0, 0, 0, 0, 0}); }

  platform::ScriptedVideoDecoders decoders;
  std::optional<CameraStack> decodingStack;
};

TEST_F(PreviewTest, TurnsTheCamerasFramesIntoPicturesWithTheirTimes) {
  const auto player = decodingStack->suitablePreviewPlayer();
  openAndSynchronisePreview();
  for (const Bytes& frame : {videoFrame({0x67, 1}), videoFrame({0x68, 2}), videoFrame({0x65, 3}), videoTimeFrame(40),
                             videoFrame({0x41, 4}), videoTimeFrame(80), videoFrame({0x41, 5}), videoFrame({0x41, 6})}) {
    send(frame);
  }
  // A unit is decoded when the next one comes, and bears the time of then.
  std::int64_t time = 0;
  EXPECT_NE(player->copyNextFrame(&time), nullptr);
  EXPECT_EQ(time, 40);
  EXPECT_NE(player->copyNextFrame(&time), nullptr);
  EXPECT_EQ(time, 80);
}

TEST_F(PreviewTest, GivesANewPlayerTheResolutionOfTheMoment) {
  const auto first = decodingStack->suitablePreviewPlayer();
  EXPECT_EQ(first->imageWidth(), 1440);
  EXPECT_EQ(first->imageHeight(), 720);
  EXPECT_EQ(first->fps(), 15);
  decodingStack->parser().setVideoStreamRes(15);
  EXPECT_EQ(first->imageWidth(), 3040);
  const auto second = decodingStack->suitablePreviewPlayer();
  EXPECT_EQ(second->imageWidth(), 3040);
  EXPECT_EQ(second->imageHeight(), 1520);
  EXPECT_EQ(second->fps(), 30);
}

TEST_F(PreviewTest, GivesThePreviewToTheLatestPlayerOnly) {
  const auto first = decodingStack->suitablePreviewPlayer();
  const auto second = decodingStack->suitablePreviewPlayer();
  EXPECT_EQ(decodingStack->parser().previewPlayer(), second);
}

TEST_F(PreviewTest, IsOverForThePlayerWhenTheStackGoes) {
  const auto player = decodingStack->suitablePreviewPlayer();
  decodingStack.reset();
  host.runUntilIdle();
  player->setMediaDataDelegate({});
  player->appendVideoBytes(bytes({0, 0, 0, 1, 0x65, 1}));
  player->appendVideoBytes(bytes({0, 0, 0, 1, 0x65, 1}));
  EXPECT_EQ(player->nextVideoTimestamp(), 66);  // of a camera of no known firmware
}

TEST_F(PreviewTest, EndsTheDecodeThreadWhenTheStackGoes) {
  const auto player = decodingStack->suitablePreviewPlayer();
  openAndSynchronisePreview();
  for (const Bytes& frame : {videoFrame({0x67, 1}), videoFrame({0x68, 2}), videoFrame({0x65, 3})}) send(frame);
  EXPECT_EQ(host.liveThreads("preview decode"), 1);
  decodingStack.reset();
  host.runUntilIdle();
  EXPECT_EQ(host.liveThreads("preview decode"), 0);
}

// Any order of the threads' turns gives the same statuses.
class AnyOrder : public testing::TestWithParam<std::uint64_t> {};

TEST_P(AnyOrder, ReachesTheSameStatusesThroughLossAndReturn) {
  platform::SimulatedPlatform host(GetParam());
  CameraStack stack(host.ports());
  std::vector<std::uint64_t> seen;
  const auto watch = stack.accessory().observeStatus([&](std::uint64_t status) { seen.push_back(status); });
  stack.accessory().openCamera();
  const auto camera = host.plug(cameraDescription());
  host.runUntilIdle();
  camera->current()->send(kMarker);
  camera->current()->send(bytes({7, 0, 0, 0, 2, 0, 5}));
  host.runUntilIdle();
  camera->current()->send(bytes({7, 0, 0, 0, 2, 0, 5}));
  host.runUntilIdle();
  camera->current()->fire(platform::StreamEvent::errorOccurred);
  host.runUntilIdle();
  host.unplug(camera);
  host.runUntilIdle();
  EXPECT_EQ(seen, (std::vector<std::uint64_t>{1, 2, 1, 0}));
  EXPECT_EQ(host.liveThreads("session thread"), 0);
}

INSTANTIATE_TEST_SUITE_P(Seeds, AnyOrder, testing::Range<std::uint64_t>(1, 51));

}  // namespace
}  // namespace zel::test

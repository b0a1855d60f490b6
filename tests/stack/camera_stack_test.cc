#include <ZELTarkaSDK/CameraStack.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "tests/transport/simulated_camera.h"

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

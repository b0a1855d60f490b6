#include "simulator/simulated_camera.h"

#include "tests/simulator/camera_test.h"

namespace zel::simulator {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class SimulatedCameraTest : public CameraTest {};

TEST_F(SimulatedCameraTest, SwitchesThePreviewToTheAskedResolution) {
  EXPECT_EQ(ask(0x0004, {7}), (Bytes{1, 7}));
  EXPECT_EQ(host->preview, 7);
  EXPECT_EQ(ask(0x0006), kDone);
  EXPECT_EQ(host->preview, -1);
}

TEST_F(SimulatedCameraTest, StartsThePreviewInForceForACodeThatItDoesNotKnow) {
  ask(0x0004, {15});
  ask(0x0006);
  EXPECT_EQ(ask(0x0004, {16}), (Bytes{1, 15}));
  EXPECT_EQ(host->preview, 15);
}

TEST_F(SimulatedCameraTest, RefusesPreviewRequestsOfAnotherLength) {
  host->preview = 99;
  EXPECT_EQ(ask(0x0004), kRefused);
  EXPECT_EQ(ask(0x0004, {1, 2}), kRefused);
  EXPECT_EQ(ask(0x0006, {0}), kRefused);
  EXPECT_EQ(host->preview, 99);
}

TEST_F(SimulatedCameraTest, SwitchesTheSound) {
  EXPECT_EQ(ask(0x000E, {1}), kDone);
  EXPECT_EQ(host->sound, true);
  EXPECT_EQ(ask(0x000E, {0}), kDone);
  EXPECT_EQ(host->sound, false);
}

TEST_F(SimulatedCameraTest, RefusesSoundThatIsNeitherOnNorOff) {
  EXPECT_EQ(ask(0x000E, {2}), kRefused);
  EXPECT_EQ(ask(0x000E), kRefused);
  EXPECT_EQ(ask(0x000E, {1, 1}), kRefused);
  EXPECT_EQ(host->sound, std::nullopt);
}

TEST_F(SimulatedCameraTest, ItsBatteryGoesDownAndSaysSo) {
  camera->start();
  world.pass(119s);
  EXPECT_THAT(world.told, IsEmpty());
  world.pass(1s);
  EXPECT_THAT(world.told, ElementsAre(Bytes{10, 0, 0, 0, 4, 0, 0x03, 0x60, 1, 99}));
  world.pass(120s);
  EXPECT_EQ(ask(0x4001), (Bytes{1, 98}));
}

TEST_F(SimulatedCameraTest, WarnsAtTenPercentAndShutsDownAtNone) {
  camera->start();
  camera->setBattery(1, 11);
  world.told.clear();
  world.pass(120s);
  EXPECT_THAT(world.told, ElementsAre(Bytes{10, 0, 0, 0, 4, 0, 0x03, 0x60, 1, 10},  //
                                      Bytes{9, 0, 0, 0, 4, 0, 0x04, 0x60, 10}));
  camera->setBattery(1, 1);
  world.told.clear();
  world.pass(120s);
  EXPECT_THAT(world.told, ElementsAre(Bytes{10, 0, 0, 0, 4, 0, 0x03, 0x60, 1, 0},  //
                                      Bytes{9, 0, 0, 0, 4, 0, 0x05, 0x60, 0}));
  world.told.clear();
  world.pass(600s);
  EXPECT_THAT(world.told, IsEmpty());
}

TEST_F(SimulatedCameraTest, KeepsItsBatteryWhileItIsFedFromOutside) {
  camera->start();
  camera->setBattery(2, 50);
  world.pass(600s);
  EXPECT_EQ(ask(0x4001), (Bytes{2, 50}));
}

TEST_F(SimulatedCameraTest, ShutsDownAfterTheDelayAndTimeForTheReply) {
  EXPECT_EQ(ask(0x4007, {1, 3}), kDone);
  world.pass(3199ms);
  EXPECT_EQ(world.unplugged, 0);
  world.pass(1ms);
  EXPECT_EQ(world.unplugged, 1);
  EXPECT_EQ(world.restarted, 0);
}

TEST_F(SimulatedCameraTest, RestartsOnOrder) {
  EXPECT_EQ(ask(0x4007, {2, 0}), kDone);
  world.pass(200ms);
  EXPECT_EQ(world.restarted, 1);
  EXPECT_EQ(world.unplugged, 0);
}

TEST_F(SimulatedCameraTest, ForgetsAnOrderThatIsCancelled) {
  ask(0x4007, {1, 3});
  EXPECT_EQ(ask(0x4008, {2}), kRefused);  // of the other command there is none
  EXPECT_EQ(ask(0x4008, {1}), kDone);
  EXPECT_EQ(ask(0x4008, {1}), kRefused);
  world.pass(60s);
  EXPECT_EQ(world.unplugged, 0);
}

TEST_F(SimulatedCameraTest, CountsFromTheSecondOrderOfACommand) {
  ask(0x4007, {1, 3});
  world.pass(2s);
  ask(0x4007, {1, 3});
  world.pass(3s);
  EXPECT_EQ(world.unplugged, 0);
  world.pass(200ms);
  EXPECT_EQ(world.unplugged, 1);
}

TEST_F(SimulatedCameraTest, RefusesOrdersThatComeTooFast) {
  for (int i = 0; i < 100; ++i) EXPECT_EQ(ask(0x4007, {1, 255}), kDone);
  EXPECT_EQ(ask(0x4007, {1, 255}), kRefused);
  EXPECT_EQ(ask(0x4008, {1}), kDone);
  world.pass(256s);
  EXPECT_EQ(ask(0x4007, {1, 255}), kDone);
}

TEST_F(SimulatedCameraTest, RefusesOrdersThatItDoesNotKnow) {
  EXPECT_EQ(ask(0x4007, {0, 0}), kRefused);
  EXPECT_EQ(ask(0x4007, {3, 0}), kRefused);
  EXPECT_EQ(ask(0x4007, {1}), kRefused);
  EXPECT_EQ(ask(0x4008), kRefused);
  world.pass(300s);
  EXPECT_EQ(world.unplugged + world.restarted, 0);
}

}  // namespace
}  // namespace zel::simulator

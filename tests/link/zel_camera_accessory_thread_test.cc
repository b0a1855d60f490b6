#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "tests/link/simulated_camera.h"

namespace zel::test {
namespace {

// A clock whose readers let other threads go first, as they may at any moment, once the camera is being closed.
class YieldingClock final : public platform::Clock {
 public:
  double absoluteTime() const override {
    for (int turn = 0; turn < 200 && closing.load(); ++turn) std::this_thread::yield();
    return 1000;
  }
  void sleepFor(double) override {}

  std::atomic<bool> closing = false;
};

// The session thread reports frames to the very end; the closing comes from another thread.
TEST(ZELCameraAccessoryThread, StaysClosedHoweverLateAFrameIsReported) {
  platform::SimulatedPlatform host;
  YieldingClock clock;
  CameraStack stack(platform::Ports{clock, host.ports().threads, host.ports().queues, host.ports().accessories,
                                    host.ports().notifications});
  const auto camera = host.plug(cameraDescription());
  ZELCameraAccessory& accessory = stack.accessory();
  for (int round = 0; round < 20; ++round) {
    ASSERT_TRUE(accessory.connectCamera(camera));
    std::atomic<bool> closed = false;
    std::atomic<int> reported = 0;
    std::thread frames([&] {
      while (!closed.load()) {
        accessory.receivedData();
        ++reported;
      }
    });
    while (reported.load() == 0) std::this_thread::yield();
    clock.closing.store(true);
    accessory.closeConnection();
    closed.store(true);
    frames.join();
    clock.closing.store(false);
    EXPECT_EQ(accessory.status(), 0u) << "round " << round;
    EXPECT_EQ(accessory.lastReceivedDataTimer(), -1.0) << "round " << round;
    host.runUntilIdle();
  }
}

}  // namespace
}  // namespace zel::test

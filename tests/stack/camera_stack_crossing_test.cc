// Callbacks on two threads, each of which ends what the other one runs in.

#include <ZELTarkaSDK/CameraStack.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include <ZELTarkaSDK/platform/notification_center.h>

#include "tests/stack/simulator_fixture.h"

namespace zel::test {
namespace {

class ClosingReceiver final : public ZELCameraNotificationProtocol {
 public:
  explicit ClosingReceiver(std::function<void()> act) : act_(std::move(act)) {}
  void notificationType(std::int64_t, const std::optional<ZELMessageFields>&) override { act_(); }

 private:
  const std::function<void()> act_;
};

void waitFor(const std::atomic<bool>& condition) {
  while (!condition.load()) std::this_thread::yield();
}

// The main thread meets the departure of the camera while the session thread is inside a callback.
class CrossingCallbacks : public SimulatorFixture {
 protected:
  // Inside the departure's notification the main thread waits for the session thread to be where it closes.
  void observeDeparture(std::function<void()> act = {}) {
    departure_ = ports().notifications.observe(kZELCameraDidDisConnectNotification, [this, act](const auto&) {
      departing_.store(true);
      waitFor(closing_);
      if (act) act();
    });
  }

  void closeWhileItDeparts() {
    inside_.store(true);
    waitFor(departing_);
    closing_.store(true);
    stack_->accessory().closeCamera();
    closed_.store(true);
  }

  void depart() {
    ASSERT_TRUE(runUntil([&] { return inside_.load(); }));
    camera_->unplug();
    ASSERT_TRUE(runUntil([&] { return closed_.load(); }));
    EXPECT_EQ(stack_->accessory().status(), 0u);
  }

  std::unique_ptr<simulator::CameraSimulator> camera_ = makeCamera("E1A0001");
  std::unique_ptr<CameraStack> stack_ = std::make_unique<CameraStack>(ports());
  std::unique_ptr<platform::NotificationObservation> departure_;
  std::atomic<bool> inside_ = false, departing_ = false, closing_ = false, closed_ = false;
};

TEST_F(CrossingCallbacks, AnObserverOfTheStatusMayCloseACameraThatDeparts) {
  const auto watch = stack_->accessory().observeStatus([this](std::uint64_t status) {
    if (status == 2 && !inside_.load()) closeWhileItDeparts();
  });
  observeDeparture();
  stack_->accessory().openCamera();
  ASSERT_TRUE(runUntil([&] { return stack_->accessory().status() == 1; }));
  stack_->parser().sendSyncData();
  depart();
}

TEST_F(CrossingCallbacks, AReceiverMayCloseACameraWhoseDepartureRemovesAReceiver) {
  const auto receiver = std::make_shared<ClosingReceiver>([this] {
    if (!inside_.load()) closeWhileItDeparts();
  });
  stack_->ucd().addCameraNotificationReceiver(receiver);
  observeDeparture([&] { stack_->ucd().removeCameraNotificationReceiver(receiver.get()); });
  stack_->accessory().openCamera();
  ASSERT_TRUE(framesArrive(*stack_));
  camera_->sendEvent(0x6003, {1, 40});
  depart();
}

TEST_F(CrossingCallbacks, AnObserverOfTheStatusMayDestroyAStackWhoseCameraDeparts) {
  const auto watch = stack_->accessory().observeStatus([this](std::uint64_t status) {
    if (status != 2 || inside_.load()) return;
    inside_.store(true);
    waitFor(departing_);
    closing_.store(true);
    stack_ = nullptr;
    closed_.store(true);
  });
  observeDeparture();
  stack_->accessory().openCamera();
  ASSERT_TRUE(runUntil([&] { return stack_->accessory().status() == 1; }));
  stack_->parser().sendSyncData();
  ASSERT_TRUE(runUntil([&] { return inside_.load(); }));
  camera_->unplug();
  ASSERT_TRUE(runUntil([&] { return closed_.load(); }));
}

}  // namespace
}  // namespace zel::test

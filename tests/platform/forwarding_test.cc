#include <ZELTarkaSDK/platform/forwarding.h>

#include <gmock/gmock.h>

#include "platform/simulated/simulated_platform.h"

namespace zel::platform {
namespace {

using testing::ElementsAre;

AccessoryDescription describedCamera() {
  AccessoryDescription description;
  description.connectionID = 7;
  description.protocolStrings = {"com.example.camera"};
  return description;
}

// A clock that the host's time service corrects backwards once.
class SteppingClock final : public ForwardingClock {
 public:
  using ForwardingClock::ForwardingClock;
  double absoluteTime() const override { return ForwardingClock::absoluteTime() - step; }
  double step = 0;
};

TEST(Forwarding, PutsAFaultInAClock) {
  SimulatedPlatform host;
  SteppingClock clock(host.ports().clock);
  clock.step = 3600;
  clock.sleepFor(2);
  EXPECT_EQ(clock.absoluteTime(), host.now() - 3600);
}

// An input whose second read fails.
class FlakyInput final : public ForwardingInputStream {
 public:
  using ForwardingInputStream::ForwardingInputStream;
  std::ptrdiff_t read(std::span<std::uint8_t> buffer) override {
    return ++reads_ == 2 ? -1 : ForwardingInputStream::read(buffer);
  }

 private:
  int reads_ = 0;
};

struct ReadingDelegate final : StreamDelegate {
  void streamHandleEvent(Stream& stream, StreamEvent event) override {
    if (event != StreamEvent::hasBytesAvailable) return;
    std::uint8_t byte[1];
    results.push_back(static_cast<InputStream&>(stream).read(byte));
  }
  std::vector<std::ptrdiff_t> results;
};

TEST(Forwarding, PutsAFaultInAStreamAndTellsItsDelegateOfTheForwardingOne) {
  SimulatedPlatform host;
  const auto accessory = host.plug(describedCamera());
  const auto session = host.ports().accessories.openSession(accessory, "com.example.camera");
  FlakyInput input(session->inputStream());
  const auto delegate = std::make_shared<ReadingDelegate>();
  input.setDelegate(delegate);
  input.scheduleInRunLoop(host.ports().threads.currentRunLoop());
  input.open();
  accessory->current()->send(std::vector<std::uint8_t>{5, 6});
  host.runUntilIdle();
  ASSERT_GE(delegate->results.size(), 2U);
  EXPECT_EQ(delegate->results[0], 1);
  EXPECT_EQ(delegate->results[1], -1);
}

TEST(Forwarding, ForgetsADelegateOfWhichTheStreamHasGone) {
  SimulatedPlatform host;
  const auto accessory = host.plug(describedCamera());
  const auto session = host.ports().accessories.openSession(accessory, "com.example.camera");
  const auto delegate = std::make_shared<ReadingDelegate>();
  {
    ForwardingInputStream input(session->inputStream());
    input.setDelegate(delegate);
    input.scheduleInRunLoop(host.ports().threads.currentRunLoop());
    input.open();
  }
  accessory->current()->fire(StreamEvent::hasBytesAvailable);
  host.runUntilIdle();
  EXPECT_THAT(delegate->results, ElementsAre());
}

}  // namespace
}  // namespace zel::platform

#include "gateway/line/shared_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/linux/camera_lock.h"
#include "platform/linux/gateway_way.h"
#include "simulator/camera_simulator.h"
#include "tests/gateway/line/line_test.h"
#include "tests/gateway/line/test_gateway.h"
#include "tests/platform/linux/temporary_folder.h"
#include "tests/platform/linux/waiting.h"

namespace zel::test {
namespace {

using platform::GatewayWay;
using platform::UniqueDescriptor;

// A host of which the test has the socket.
class RawHost {
 public:
  explicit RawHost(UniqueDescriptor socket) : socket_(std::move(socket)) {
    const timeval limit{.tv_sec = kLimit.count(), .tv_usec = 0};
    ::setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  }

  bool send(const Bytes& stream) {
    return ::send(socket_.get(), stream.data(), stream.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(stream.size());
  }
  // The next frame of that code; empty where the stream ends before it.
  Bytes reply(int code) {
    for (;;) {
      for (; next_ < frames_.size(); ++next_) {
        const Bytes& one = frames_[next_];
        if (one.size() >= 8 && one[4] == 4 && one[6] + 256 * one[7] == code) return frames_[next_++];
      }
      if (!receive()) return {};
    }
  }
  // Whether the other end closes the connection.
  bool ends() {
    while (receive()) continue;
    return isEnded_;
  }
  void stopReading() { ::shutdown(socket_.get(), SHUT_WR); }

 private:
  bool receive() {
    std::array<std::uint8_t, 65536> buffer;
    const ssize_t count = ::recv(socket_.get(), buffer.data(), buffer.size(), 0);
    isEnded_ = count == 0;
    if (count <= 0) return false;
    received_.insert(received_.end(), buffer.begin(), buffer.begin() + count);
    frames_ = framesIn(received_);
    return true;
  }

  UniqueDescriptor socket_;
  Bytes received_;
  std::vector<Bytes> frames_;
  std::size_t next_ = 0;
  bool isEnded_ = false;
};

class SharedLinesTest : public ::testing::Test {
 protected:
  void attach(simulator::Faults faults = {}, const std::string& serial = "E1A0001") {
    simulator::SimulatorOptions options;
    options.accessoriesFolder = bus();
    options.identity.serial = serial;
    options.faults = std::move(faults);
    options.warn = [](const std::string&) {};
    simulators_.push_back(std::make_unique<simulator::CameraSimulator>(std::move(options)));
    std::string error;
    ASSERT_TRUE(simulators_.back()->start(error)) << error;
  }
  void share() {
    gateway_ = std::make_unique<TestGateway>(bus());
    ASSERT_TRUE(gateway_->isThere());
  }
  std::string bus() const { return folder_.path() + "/bus"; }

  std::unique_ptr<RawHost> host(const std::string& camera = "E1A0001") {
    GatewayWay way;
    const bool isThere = eventually([&] {
      way = platform::askGateways(bus(), camera, kLimit);
      return way.answer == GatewayWay::Answer::granted;
    });
    EXPECT_TRUE(isThere);
    return std::make_unique<RawHost>(std::move(way.connection));
  }
  std::unique_ptr<RawHost> syncedHost() {
    auto one = host();
    one->send(message(0x402E, kMarker));
    EXPECT_EQ(one->reply(0xC02E), message(0xC02E, bytes({1})));
    return one;
  }
  static Bytes battery(RawHost& host) {
    host.send(message(0x4001));
    return host.reply(0xC001);
  }

  TemporaryFolder folder_;
  std::vector<std::unique_ptr<simulator::CameraSimulator>> simulators_;
  std::unique_ptr<TestGateway> gateway_;
};

const Bytes kFull = message(0xC001, bytes({1, 100}));

TEST_F(SharedLinesTest, TwoHostsHaveOneCamera) {
  attach();
  share();
  const auto one = syncedHost(), other = syncedHost();
  EXPECT_EQ(battery(*one), kFull);
  EXPECT_EQ(battery(*other), kFull);
  EXPECT_EQ(simulators_[0]->connections(), 1);
}

TEST_F(SharedLinesTest, ACameraThatComesLaterIsSharedToo) {
  share();
  attach();
  EXPECT_EQ(battery(*syncedHost()), kFull);
}

TEST_F(SharedLinesTest, FiftyHostsGetTheirAnswers) {
  attach();
  share();
  std::vector<std::unique_ptr<RawHost>> hosts;
  for (int i = 0; i < 50; ++i) hosts.push_back(syncedHost());
  for (const auto& one : hosts) one->send(message(0x4001));
  for (const auto& one : hosts) EXPECT_EQ(one->reply(0xC001), kFull);
}

TEST_F(SharedLinesTest, AHostThatSendsGarbageEndsAlone) {
  attach();
  share();
  const auto good = syncedHost(), bad = syncedHost();
  bad->send(repeated(1000, 0xEE));
  EXPECT_TRUE(bad->ends());
  EXPECT_EQ(battery(*good), kFull);
}

TEST_F(SharedLinesTest, HalfAFrameHindersNobody) {
  attach();
  share();
  const auto good = syncedHost(), half = syncedHost(), gone = syncedHost();
  half->send(bytes({100, 0, 0, 0, 4, 0, 1}));
  gone->send(frameOf(9, {}));
  EXPECT_EQ(battery(*good), kFull);
}

TEST_F(SharedLinesTest, AHostThatNeverReadsDelaysNobody) {
  attach();
  share();
  const auto stuck = syncedHost(), good = syncedHost();
  for (int i = 0; i < 2000; ++i) stuck->send(message(0x402E, kMarker));
  stuck->send(message(0x0004, bytes({0})));
  for (int i = 0; i < 20; ++i) EXPECT_EQ(battery(*good), kFull);
}

TEST_F(SharedLinesTest, TheHostsEndWhenTheCameraGoes) {
  attach();
  share();
  const auto one = syncedHost(), other = syncedHost();
  simulators_[0]->unplug();
  EXPECT_TRUE(one->ends());
  EXPECT_TRUE(other->ends());
  EXPECT_TRUE(eventually([&] { return !gateway_->lines().cameras().at(0).isPresent(); }));
  EXPECT_EQ(platform::askGateways(bus(), "E1A0001", kLimit).answer, GatewayWay::Answer::absent);
  simulators_[0]->plug();
  EXPECT_EQ(battery(*syncedHost()), kFull);
}

TEST_F(SharedLinesTest, AnUnknownCameraIsNotGiven) {
  attach();
  share();
  EXPECT_EQ(platform::askGateways(bus(), "E1A0002", kLimit).answer, GatewayWay::Answer::none);
  EXPECT_FALSE(gateway_->lines().admit("E1A0002", {}));
}

TEST_F(SharedLinesTest, EachCameraHasALineOfItsOwn) {
  attach();
  attach({}, "E1A0002");
  share();
  syncedHost();
  const auto other = host("E1A0002");
  other->send(message(0x402E, kMarker));
  EXPECT_EQ(other->reply(0xC02E), message(0xC02E, bytes({1})));
  other->send(message(0x4012));
  EXPECT_EQ(other->reply(0xC012), message(0xC012, join(bytes({1}), text("E1A0002"))));
}

TEST_F(SharedLinesTest, NothingStaysLockedAfterItsEnd) {
  attach();
  share();
  const auto one = syncedHost();
  gateway_.reset();
  EXPECT_TRUE(one->ends());
  EXPECT_NE(platform::CameraLock::take(bus(), "E1A0001", "test").lock, nullptr);
  EXPECT_EQ(platform::askGateways(bus(), "E1A0001", kLimit).answer, GatewayWay::Answer::none);
}

TEST_F(SharedLinesTest, ACameraThatDoesNotAnswerTheMarkerPromisesNothing) {
  simulator::Faults faults;
  std::string error;
  ASSERT_TRUE(faults.add("no-reply=0x402E", error));
  attach(faults);
  share();
  const auto one = host();
  one->send(message(0x402E, kMarker));
  EXPECT_TRUE(eventually([&] { return simulators_[0]->connections() >= 2; })) << "it has been asked, and given up";
  EXPECT_EQ(gateway_->lines().cameras().at(0).state, gateway::LineState::opening);
}

TEST_F(SharedLinesTest, AnImpossibleLengthFromTheCameraIsANewSession) {
  simulator::Faults faults;
  std::string error;
  ASSERT_TRUE(faults.add("length-zero", error));
  attach(faults);
  share();
  const auto one = syncedHost();
  one->send(message(0x0004, bytes({0})));
  EXPECT_TRUE(one->ends());
  EXPECT_EQ(battery(*syncedHost()), kFull);
  EXPECT_EQ(simulators_[0]->connections(), 2);
}

}  // namespace
}  // namespace zel::test

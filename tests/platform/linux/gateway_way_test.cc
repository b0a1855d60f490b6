#include "platform/linux/gateway_way.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <array>
#include <filesystem>
#include <thread>

#include "tests/platform/linux/bus_fixture.h"

namespace zel::platform {
namespace {

using test::listenAt;
using Answer = GatewayWay::Answer;

class GatewayWayTest : public ::testing::Test {
 protected:
  GatewayWayTest() { std::filesystem::create_directory(bus()); }
  ~GatewayWayTest() override {
    for (std::thread& one : threads_) one.join();
  }

  std::string bus() const { return folder_.file("bus"); }

  // A gateway that answers one request so.
  void answerAt(const std::string& path, const std::string& answer) {
    threads_.emplace_back([this, answer, listener = std::make_shared<UniqueDescriptor>(listenAt(path))] {
      const UniqueDescriptor host(accept(listener->get(), nullptr, nullptr));
      std::array<char, 4096> buffer{};
      const ssize_t count = recv(host.get(), buffer.data(), buffer.size(), 0);
      requests_.add(std::string(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))));
      send(host.get(), answer.data(), answer.size(), MSG_NOSIGNAL);
      done_.wait();
    });
  }
  GatewayWay ask(const std::string& camera = "E1A0001", std::chrono::milliseconds limit = test::kLimit) {
    GatewayWay way = askGateways(bus(), camera, limit);
    done_.set();
    return way;
  }

  test::TemporaryFolder folder_;
  test::Recorded<std::string> requests_;
  test::Event done_;
  std::vector<std::thread> threads_;
};

constexpr const char* kGranted = "HTTP/1.1 101 Switching Protocols\r\nUpgrade: zel-wire\r\n\r\n";

TEST_F(GatewayWayTest, WithoutAGatewayThereIsNone) { EXPECT_EQ(ask().answer, Answer::none); }

TEST_F(GatewayWayTest, AsksForTheCamerasBytes) {
  answerAt(folder_.file("gateway.sock"), kGranted);
  const GatewayWay way = ask("a b");
  EXPECT_EQ(way.answer, Answer::granted);
  EXPECT_THAT(requests_.now(), ::testing::ElementsAre("GET /api/v1/cameras/a%20b/wire HTTP/1.1\r\nHost: localhost\r\n"
                                                      "Connection: Upgrade\r\nUpgrade: zel-wire\r\n\r\n"));
}

TEST_F(GatewayWayTest, LeavesTheCamerasBytesBehindTheHeader) {
  answerAt(folder_.file("gateway.sock"), std::string(kGranted) + "abc");
  const GatewayWay way = ask();
  std::array<char, 8> buffer{};
  EXPECT_EQ(recv(way.connection.get(), buffer.data(), buffer.size(), 0), 3);
  EXPECT_STREQ(buffer.data(), "abc");
}

TEST_F(GatewayWayTest, TheGatewayInsideTheFolderIsAskedFirst) {
  answerAt(bus() + "/.gateway.sock", "HTTP/1.1 404 Not Found\r\n\r\n");
  answerAt(folder_.file("gateway.sock"), kGranted);
  EXPECT_EQ(ask().answer, Answer::granted);
  EXPECT_EQ(requests_.now().size(), 2u);
}

TEST_F(GatewayWayTest, AnAbsentCameraIsKnown) {
  answerAt(folder_.file("gateway.sock"), "HTTP/1.1 503 Service Unavailable\r\n\r\n");
  EXPECT_EQ(ask().answer, Answer::absent);
}

TEST_F(GatewayWayTest, OtherAnswersAreNone) {
  answerAt(folder_.file("gateway.sock"), "hello\r\n\r\n");
  EXPECT_EQ(ask().answer, Answer::none);
}

TEST_F(GatewayWayTest, AnEndWithinTheHeaderIsNone) {
  done_.set();
  answerAt(folder_.file("gateway.sock"), "HTTP/1.1 101 Switching");
  EXPECT_EQ(ask().answer, Answer::none);
}

TEST_F(GatewayWayTest, AHeaderWithoutEndIsNone) {
  answerAt(folder_.file("gateway.sock"), "HTTP/1.1 101 Switching Protocols\r\n" + std::string(9000, 'x'));
  EXPECT_EQ(ask().answer, Answer::none);
}

TEST_F(GatewayWayTest, AGatewayThatDoesNotAnswerHoldsNobody) {
  answerAt(folder_.file("gateway.sock"), "");
  EXPECT_EQ(ask("E1A0001", std::chrono::milliseconds(50)).answer, Answer::none);
}

TEST_F(GatewayWayTest, AFileThatIsNoSocketIsNone) {
  folder_.write("gateway.sock", "");
  EXPECT_EQ(ask().answer, Answer::none);
}

}  // namespace
}  // namespace zel::platform

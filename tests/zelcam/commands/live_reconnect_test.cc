// What `zelcam live --reconnect` goes through.

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "tests/zelcam/live_test.h"

namespace zel::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

const std::string kLost = "the camera was lost; waiting up to";
const std::string kThereAgain = "the camera is there again";

class LiveReconnectTest : public LiveTest {
 protected:
  // With a time-out that is not over before a test is: what is noticed, is noticed of the link.
  std::unique_ptr<Process> streaming(Arguments more) {
    more.insert(more.begin(), {"--timeout", "600", "--verbose", "live", "-o", path("a.ts")});
    auto host = zelcam(std::move(more));
    EXPECT_TRUE(grows(path("a.ts"), 50'000)) << host->errors();
    return host;
  }

  // The stream goes on, in one file that plays.
  void expectToGoOn(Process& host) {
    ASSERT_TRUE(host.waitForErrors(kThereAgain)) << host.errors();
    ASSERT_TRUE(grows(path("a.ts"), 1)) << host.errors();
    EXPECT_TRUE(grows(path("a.ts"), fs::file_size(path("a.ts")) + 100'000)) << host.errors();
    host.signal(SIGINT);
    EXPECT_EQ(host.wait(), 0) << host.errors();
    EXPECT_TRUE(readBack(path("a.ts")).ordered);
  }

  // Connects to the simulator as somebody does who knows of no lock.
  int intrude() const {
    const Json file = Json::parse(std::ifstream(bus() + "/E1A0001.json"));
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    file["endpoint"]["path"].get<std::string>().copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    return socket;
  }
};

TEST_F(LiveReconnectTest, ACameraThatWasFrozenIsStreamedFromAgain) {
  const auto camera = simulator();
  const auto host = streaming({"--no-stitch", "--reconnect", "60"});
  camera->signal(SIGSTOP);
  ASSERT_TRUE(host->waitForErrors(kLost)) << host->errors();
  camera->signal(SIGCONT);
  expectToGoOn(*host);
}

TEST_F(LiveReconnectTest, ACameraThatWasFrozenIsStitchedAgain) {
  const auto camera = simulator();
  const auto host = streaming({"--size", "480x240", "--reconnect", "60"});
  camera->signal(SIGSTOP);
  ASSERT_TRUE(host->waitForErrors(kLost)) << host->errors();
  camera->signal(SIGCONT);
  expectToGoOn(*host);
}

TEST_F(LiveReconnectTest, ACameraThatWasKilledAndStartsLateIsNobodyElsesMeanwhile) {
  auto camera = simulator();
  const auto host = streaming({"--no-stitch", "--reconnect", "60"});
  camera->signal(SIGKILL);
  ASSERT_TRUE(host->waitForErrors(kLost)) << host->errors();
  const auto other = zelcam({"--timeout", "600", "info"});
  EXPECT_EQ(other->wait(), 3);
  EXPECT_EQ(other->errors(),
            "zelcam: camera E1A0001 is in use by process " + std::to_string(host->id()) + " (zelcam live)\n");
  camera = simulator();
  expectToGoOn(*host);
}

TEST_F(LiveReconnectTest, ACameraThatAnotherHostTookIsTakenBack) {
  const auto camera = simulator();
  const auto host = streaming({"--no-stitch", "--reconnect", "60"});
  const int intruder = intrude();
  expectToGoOn(*host);
  ::close(intruder);
}

TEST_F(LiveReconnectTest, APhotoLeavesTheStreamAlone) {
  const auto camera = simulator();
  const auto host = streaming({"--no-stitch"});
  EXPECT_EQ(zelcam({"photo", "-o", folder.path()})->wait(), 3);
  EXPECT_TRUE(grows(path("a.ts"), fs::file_size(path("a.ts")) + 100'000)) << host->errors();
  host->signal(SIGINT);
  EXPECT_EQ(host->wait(), 0) << host->errors();
  EXPECT_THAT(host->errors(), Not(HasSubstr("the camera was lost")));
}

// The camera need not go on by itself with what it was asked for on another connection.
TEST_F(LiveReconnectTest, ASessionThatWasOpenedAgainByItselfIsAskedForPicturesAgain) {
  const auto camera = simulator({"--verbose", "--fault", "length-zero"});
  const auto host = live({"-o", path("a.ts"), "--no-stitch"});
  ASSERT_TRUE(host->waitForErrors(kLost)) << host->errors();
  expectToGoOn(*host);
}

}  // namespace
}  // namespace zel::test

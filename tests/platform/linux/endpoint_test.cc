#include "platform/linux/endpoint.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/platform/linux/bus_fixture.h"

namespace zel::platform {
namespace {

using std::chrono::milliseconds;
using ::testing::HasSubstr;

class EndpointTest : public ::testing::Test {
 protected:
  UniqueDescriptor open(const Endpoint& endpoint, milliseconds limit = milliseconds(2000)) {
    return connectEndpoint(endpoint, limit, fault_);
  }

  test::TemporaryFolder folder_;
  std::string fault_;
};

TEST_F(EndpointTest, ConnectsToAUnixSocket) {
  const auto listener = test::listenAt(folder_.file("s"));
  const auto connection = open(UnixEndpoint{folder_.file("s")});
  ASSERT_TRUE(connection) << fault_;
  EXPECT_NE(fcntl(connection.get(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(EndpointTest, UnixSocketWhoseQueueIsFullIsGivenUpInTime) {
  const auto listener = test::listenAt(folder_.file("s"), 0);
  const auto first = open(UnixEndpoint{folder_.file("s")});
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(open(UnixEndpoint{folder_.file("s")}, milliseconds(50)));
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(45));
  EXPECT_EQ(fault_, "unix socket " + folder_.file("s") + ": Connection timed out");
}

TEST_F(EndpointTest, UnixPathThatNoAddressHoldsIsRefused) {
  EXPECT_FALSE(open(UnixEndpoint{std::string(108, 'a')}));
  EXPECT_THAT(fault_, HasSubstr("File name too long"));
}

TEST_F(EndpointTest, ConnectsOverTcpWithoutDelay) {
  const UniqueDescriptor listener(socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  ASSERT_EQ(bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), size), 0);
  ASSERT_EQ(listen(listener.get(), 1), 0);
  ASSERT_EQ(getsockname(listener.get(), reinterpret_cast<sockaddr*>(&address), &size), 0);
  const auto connection = open(TcpEndpoint{"127.0.0.1", ntohs(address.sin_port)});
  ASSERT_TRUE(connection) << fault_;
  int noDelay = 0;
  socklen_t length = sizeof noDelay;
  ASSERT_EQ(getsockopt(connection.get(), IPPROTO_TCP, TCP_NODELAY, &noDelay, &length), 0);
  EXPECT_NE(noDelay, 0);
}

TEST_F(EndpointTest, RefusedTcpConnectionIsTold) {
  const UniqueDescriptor bound(socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  ASSERT_EQ(bind(bound.get(), reinterpret_cast<const sockaddr*>(&address), size), 0);  // bound, but nobody listens
  ASSERT_EQ(getsockname(bound.get(), reinterpret_cast<sockaddr*>(&address), &size), 0);
  const std::uint16_t port = ntohs(address.sin_port);
  EXPECT_FALSE(open(TcpEndpoint{"127.0.0.1", port}));
  EXPECT_EQ(fault_, "tcp 127.0.0.1 port " + std::to_string(port) + ": Connection refused");
}

TEST_F(EndpointTest, SilentTcpHostIsGivenUpInTime) {
  const UniqueDescriptor listener(socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  ASSERT_EQ(bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), size), 0);
  ASSERT_EQ(listen(listener.get(), 0), 0);
  ASSERT_EQ(getsockname(listener.get(), reinterpret_cast<sockaddr*>(&address), &size), 0);
  const TcpEndpoint endpoint{"127.0.0.1", ntohs(address.sin_port)};
  const auto first = open(endpoint);  // fills the queue; what follows is not answered
  EXPECT_FALSE(open(endpoint, milliseconds(50)));
  EXPECT_THAT(fault_, HasSubstr("Connection timed out"));
}

TEST_F(EndpointTest, TtyIsOpenedInRawMode) {
  const UniqueDescriptor master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_TRUE(master);
  ASSERT_EQ(grantpt(master.get()), 0);
  ASSERT_EQ(unlockpt(master.get()), 0);
  const auto device = open(DeviceEndpoint{ptsname(master.get())});
  ASSERT_TRUE(device) << fault_;
  ASSERT_EQ(write(master.get(), "\r\x03", 2), 2);  // in another mode: a line's end, and a signal
  pollfd query = {.fd = device.get(), .events = POLLIN, .revents = 0};
  ASSERT_EQ(poll(&query, 1, 10000), 1);
  char bytes[3] = {};
  ASSERT_EQ(read(device.get(), bytes, sizeof bytes), 2);
  EXPECT_STREQ(bytes, "\r\x03");
}

TEST_F(EndpointTest, PlainFileIsNoDevice) {
  folder_.write("f", "");
  EXPECT_FALSE(open(DeviceEndpoint{folder_.file("f")}));
  EXPECT_EQ(fault_, "device " + folder_.file("f") + ": not a character device");
}

TEST_F(EndpointTest, MissingDeviceIsTold) {
  EXPECT_FALSE(open(DeviceEndpoint{"/dev/zel-missing"}));
  EXPECT_EQ(fault_, "device /dev/zel-missing: No such file or directory");
}

}  // namespace
}  // namespace zel::platform

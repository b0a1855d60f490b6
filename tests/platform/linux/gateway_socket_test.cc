#include "platform/linux/gateway_socket.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/platform/linux/bus_fixture.h"

namespace zel::platform {
namespace {

namespace fs = std::filesystem;
using test::listenAt;

class GatewaySocketTest : public ::testing::Test {
 protected:
  GatewaySocketTest() { fs::create_directory(bus()); }

  std::string bus() const { return folder_.file("bus"); }
  std::string beside() const { return folder_.file("gateway.sock"); }
  std::string inside() const { return bus() + "/.gateway.sock"; }
  std::unique_ptr<GatewaySocket> listen() { return GatewaySocket::listen(bus(), fault_); }

  test::TemporaryFolder folder_;
  std::string fault_;
};

TEST_F(GatewaySocketTest, IsLookedForInsideTheFolderFirst) {
  EXPECT_THAT(gatewaySocketPaths(bus()), ::testing::ElementsAre(inside(), beside()));
  EXPECT_THAT(gatewaySocketPaths(bus() + "/"), ::testing::ElementsAre(inside(), beside()));
}

TEST_F(GatewaySocketTest, StandsBesideTheFolderForItsUserAlone) {
  const auto socket = listen();
  ASSERT_NE(socket, nullptr) << fault_;
  EXPECT_EQ(socket->path(), beside());
  struct stat found = {};
  ASSERT_EQ(stat(beside().c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777, 0600u);
}

TEST_F(GatewaySocketTest, GoesWithItsObject) {
  listen().reset();
  EXPECT_FALSE(fs::exists(beside()));
}

TEST_F(GatewaySocketTest, AStaleOneIsReplaced) {
  listenAt(beside()).reset();
  ASSERT_TRUE(fs::exists(beside()));
  const auto socket = listen();
  ASSERT_NE(socket, nullptr) << fault_;
  EXPECT_EQ(socket->path(), beside());
}

TEST_F(GatewaySocketTest, ASecondGatewayStandsInsideTheFolder) {
  const auto first = listen();
  const auto second = listen();
  ASSERT_NE(second, nullptr) << fault_;
  EXPECT_EQ(second->path(), inside());
  EXPECT_EQ(listen(), nullptr);
  EXPECT_EQ(fault_, beside() + ": another gateway answers there; " + inside() + ": another gateway answers there");
}

TEST_F(GatewaySocketTest, LeavesASocketThatHasReplacedIt) {
  auto socket = listen();
  fs::remove(beside());
  const auto other = listenAt(beside());
  socket.reset();
  EXPECT_TRUE(fs::exists(beside()));
}

TEST_F(GatewaySocketTest, AFaultNamesTheSocket) {
  const std::string far = folder_.file(std::string(120, 'x'));
  fs::create_directory(far);
  EXPECT_EQ(GatewaySocket::listen(far + "/bus", fault_), nullptr);
  EXPECT_THAT(fault_, ::testing::HasSubstr("/gateway.sock: File name too long"));
}

}  // namespace
}  // namespace zel::platform

#include "gateway/http/listen.h"

#include <gmock/gmock.h>

namespace zel::gateway {
namespace {

using testing::HasSubstr;

TEST(ListenAddressTest, IsAHostAndAPort) {
  EXPECT_EQ(parseListenAddress("127.0.0.1:8360"), (ListenAddress{"127.0.0.1", 8360}));
  EXPECT_EQ(parseListenAddress("[::1]:0"), (ListenAddress{"::1", 0}));
  EXPECT_EQ(parseListenAddress("camera.local:65535"), (ListenAddress{"camera.local", 65535}));
}

TEST(ListenAddressTest, IsNothingElse) {
  for (const char* text :
       {"", "127.0.0.1", ":8360", "127.0.0.1:", "127.0.0.1:65536", "127.0.0.1:-1", "::1:80", "[]:80", "a:b"})
    EXPECT_EQ(parseListenAddress(text), std::nullopt) << text;
}

TEST(ListenTest, AtPort0TakesAFreeOne) {
  std::string error;
  const auto first = listenAt({"127.0.0.1", 0}, error), second = listenAt({"127.0.0.1", 0}, error);
  ASSERT_TRUE(first && second) << error;
  EXPECT_NE(first->port, 0);
  EXPECT_NE(first->port, second->port);
  EXPECT_EQ(first->host, "127.0.0.1");
  EXPECT_TRUE(first->isLoopback);
}

TEST(ListenTest, AtAnAddressThatIsTakenSaysSo) {
  std::string error;
  const auto first = listenAt({"127.0.0.1", 0}, error);
  ASSERT_TRUE(first);
  EXPECT_FALSE(listenAt({"127.0.0.1", first->port}, error));
  EXPECT_THAT(error, HasSubstr("is taken by another program"));
}

TEST(ListenTest, AtAnAddressOfAnotherMachineSaysSo) {
  std::string error;
  EXPECT_FALSE(listenAt({"192.0.2.1", 0}, error));
  EXPECT_THAT(error, HasSubstr("192.0.2.1 is no address of this machine"));
}

TEST(ListenTest, AtEveryAddressIsReachedByTheMachinesName) {
  std::string error;
  const auto listener = listenAt({"0.0.0.0", 0}, error);
  ASSERT_TRUE(listener) << error;
  EXPECT_FALSE(listener->isLoopback);
  EXPECT_EQ(listener->host, namesOfThisMachine().front());
}

TEST(InheritedSocketsTest, AreNoneWhereTheyAreAnotherProcesss) {
  ::setenv("LISTEN_PID", "1", 1);
  ::setenv("LISTEN_FDS", "1", 1);
  const InheritedSockets sockets = takeInheritedSockets();
  EXPECT_FALSE(sockets.listener);
  EXPECT_FALSE(sockets.localListener);
  ::unsetenv("LISTEN_PID");
  ::unsetenv("LISTEN_FDS");
}

}  // namespace
}  // namespace zel::gateway

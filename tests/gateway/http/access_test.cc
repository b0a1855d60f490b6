#include "gateway/http/access.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace zel::gateway {
namespace {

constexpr char kToken[] = "0123456789abcdef";

class AccessTest : public testing::Test {
 protected:
  // 200 where it is let in.
  int status(bool isPublic = false) const {
    const auto refusal = refusalOf(request, rules, isPublic);
    return refusal ? refusal->status : 200;
  }

  AccessRules rules{kToken, {"camera.example"}};
  Request request{.method = "GET",
                  .target = {},
                  .headers = {{"host", "camera.example:8360"}, {"authorization", std::string("Bearer ") + kToken}},
                  .body = {}};
};

TEST_F(AccessTest, IsGivenToABearerOfTheToken) {
  EXPECT_EQ(status(), 200);
  request.headers["authorization"] = std::string("bearer ") + kToken;
  EXPECT_EQ(status(), 200);
}

TEST_F(AccessTest, IsGivenByThePagesCookie) {
  request.headers.erase("authorization");
  request.headers["cookie"] = std::string("zel_token=") + kToken;
  EXPECT_EQ(status(), 200);
}

TEST_F(AccessTest, IsRefusedWithoutTheToken) {
  for (const char* given : {"", "Bearer ", "Bearer 0123456789abcde", "Bearer 0123456789abcdef0",
                            "Bearer 1123456789abcdef", "Basic 0123456789abcdef", "0123456789abcdef"}) {
    request.headers["authorization"] = given;
    EXPECT_EQ(status(), 401) << given;
  }
}

TEST_F(AccessTest, ToTheWholeTokenTwiceOverIsRefused) {
  request.headers["authorization"] = std::string("Bearer ") + kToken + kToken;
  EXPECT_EQ(status(), 401);
}

TEST_F(AccessTest, ToThePageNeedsNoToken) {
  request.headers.erase("authorization");
  EXPECT_EQ(status(true), 200);
}

TEST_F(AccessTest, NeedsNoTokenWhereThereIsNone) {
  rules.token.clear();
  request.headers.erase("authorization");
  EXPECT_EQ(status(), 200);
}

TEST_F(AccessTest, IsGivenUnderTheServersNamesAndEveryAddress) {
  for (const char* host :
       {"localhost", "LOCALHOST:1", "127.0.0.1:8360", "[::1]", "[fe80::1]:8360", "Camera.Example", "192.168.1.7"}) {
    request.headers["host"] = host;
    EXPECT_EQ(status(), 200) << host;
  }
}

TEST_F(AccessTest, IsRefusedUnderAnotherNameThatLeadsHere) {
  for (const char* host : {"evil.example", "evil.example:8360", "camera.example.evil", "", ":8360", "localhost:",
                           "localhost:x", "127.0.0.1.evil", "[::1", "[::1]x", "1270.0.0.1", "localhost:123456"}) {
    request.headers["host"] = host;
    EXPECT_EQ(status(), 421) << host;
    EXPECT_EQ(status(true), 421) << host;
  }
}

TEST_F(AccessTest, IsRefusedToPagesOfOtherOrigins) {
  for (const char* origin : {"http://evil.example", "null", "http://camera.example", "http://camera.example:83600",
                             "ftp://camera.example:8360"}) {
    request.headers["origin"] = origin;
    EXPECT_EQ(status(), 403) << origin;
    EXPECT_EQ(status(true), 403) << origin;
  }
}

TEST_F(AccessTest, IsGivenToItsOwnPageAlsoBehindAProxyWithTls) {
  for (const char* origin : {"http://camera.example:8360", "https://Camera.Example:8360"}) {
    request.headers["origin"] = origin;
    EXPECT_EQ(status(), 200) << origin;
  }
}

TEST_F(AccessTest, IsRefusedToWhatAnotherPageFetchesButNotToALinkToThePage) {
  for (const char* site : {"cross-site", "same-site"}) {
    request.headers["sec-fetch-site"] = site;
    EXPECT_EQ(status(), 403) << site;
    EXPECT_EQ(status(true), 200) << site;
  }
  for (const char* site : {"same-origin", "none"}) {
    request.headers["sec-fetch-site"] = site;
    EXPECT_EQ(status(), 200) << site;
  }
}

TEST_F(AccessTest, OnTheLocalSocketNeedsNothing) {
  request.headers.clear();
  request.isLocal = true;
  EXPECT_EQ(status(), 200);
}

TEST_F(AccessTest, IsRefusedInTheSameWordsWhateverIsAskedFor) {
  request.headers.erase("authorization");
  const auto first = refusalOf(request, rules, false);
  request.target = {{"api", "v1", "cameras", "E1A0001"}, {}};
  const auto second = refusalOf(request, rules, false);
  EXPECT_EQ(std::get<std::string>(first->content), std::get<std::string>(second->content));
  EXPECT_EQ(first->headers, second->headers);
}

TEST(SecretTest, IsTheSameOnlyWhereAllOfItIs) {
  EXPECT_TRUE(isSameSecret("abc", "abc"));
  for (const char* other : {"", "ab", "abcd", "abd", "bbc", "abcabc"})
    EXPECT_FALSE(isSameSecret(other, "abc")) << other;
  EXPECT_FALSE(isSameSecret("a", ""));
  EXPECT_TRUE(isSameSecret("", ""));
}

}  // namespace
}  // namespace zel::gateway

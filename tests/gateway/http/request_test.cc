#include "gateway/http/request.h"

#include <gmock/gmock.h>

namespace zel::gateway {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(TargetTest, OfTheRootHasNoSegments) {
  const auto target = parseTarget("/");
  ASSERT_TRUE(target);
  EXPECT_THAT(target->path, IsEmpty());
}

TEST(TargetTest, IsDecodedSegmentBySegment) {
  const auto target = parseTarget("/api/a%2Fb/%C3%A9+?width=2%30&x=a+b&y");
  ASSERT_TRUE(target);
  EXPECT_THAT(target->path, ElementsAre("api", "a/b", "\xC3\xA9+"));
  EXPECT_THAT(target->query, ElementsAre(Pair("width", "20"), Pair("x", "a b"), Pair("y", "")));
}

TEST(TargetTest, KeepsEmptySegments) {
  EXPECT_THAT(parseTarget("/a/")->path, ElementsAre("a", ""));
  EXPECT_THAT(parseTarget("//a")->path, ElementsAre("", "a"));
}

TEST(TargetTest, OfARepeatedQueryTakesTheFirst) {
  EXPECT_THAT(parseTarget("/?a=1&a=2")->query, ElementsAre(Pair("a", "1")));
}

TEST(TargetTest, IsRefusedWhereItIsNoPath) {
  for (const char* text : {"", "*", "http://a/", "a/b", "/a b", "/a#b", "/\xC3\xA9", "/a\x7F"})
    EXPECT_FALSE(parseTarget(text)) << text;
}

TEST(TargetTest, IsRefusedWhereAPercentSignIsBrokenOrHidesAControlCharacter) {
  for (const char* text : {"/%", "/%2", "/%zz", "/%+1", "/%00", "/%0a", "/%1F", "/%7f", "/%FF", "/%C0%AF", "/?a=%00"})
    EXPECT_FALSE(parseTarget(text)) << text;
}

TEST(TargetTest, HasAtMost4096Bytes) {
  EXPECT_TRUE(parseTarget("/" + std::string(4095, 'a')));
  EXPECT_FALSE(parseTarget("/" + std::string(4096, 'a')));
}

TEST(CookieTest, IsFoundByItsWholeName) {
  EXPECT_EQ(cookieIn("a=1; zel_token=x=y; b=2", "zel_token"), "x=y");
  EXPECT_EQ(cookieIn("azel_token=1", "zel_token"), std::nullopt);
  EXPECT_EQ(cookieIn("", "zel_token"), std::nullopt);
}

TEST(MediaTypeTest, IsWithoutItsParameters) {
  EXPECT_EQ(mediaTypeIn("Application/JSON ; charset=utf-8"), "application/json");
  EXPECT_EQ(mediaTypeIn(""), "");
}

}  // namespace
}  // namespace zel::gateway

#include "base/text.h"

#include <gtest/gtest.h>

#include "tests/link/bytes.h"

namespace zel::test {
namespace {

TEST(TextTest, KnowsUtf8) {
  EXPECT_TRUE(isUtf8(""));
  EXPECT_TRUE(isUtf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x93\xB7"));  // a, e acute, euro, camera
  EXPECT_TRUE(isUtf8("\xF4\x8F\xBF\xBF"));                       // U+10FFFF
}

TEST(TextTest, RefusesWhatIsNotUtf8) {
  for (const char* bad : {"\x80", "\xC3", "\xC3(", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                          "\xF0\x9F\x93", "\xFF", "\xF8\x88\x80\x80\x80"}) {
    EXPECT_FALSE(isUtf8(bad)) << bad;
  }
}

// Each length's first and last character, and those beside the surrogates.
TEST(TextTest, KnowsUtf8UpToItsEdges) {
  for (const char* good : {"\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
                           "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(isUtf8(good)) << good;
  }
  for (const char* bad : {"\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF",
                          "\xF4\x90\x80\x80", "\xC3\xC3", "\xC3\x7F"}) {
    EXPECT_FALSE(isUtf8(bad)) << bad;
  }
}

TEST(TextTest, KnowsAscii) {
  EXPECT_TRUE(isAscii("a\x7F"));
  EXPECT_FALSE(isAscii("a\x80"));
}

TEST(TextTest, CountsCharactersAsUtf16Does) {
  EXPECT_EQ(characterCount("a\xC3\xA9\xE2\x82\xAC"), 3u);
  EXPECT_EQ(characterCount("\xF0\x9F\x93\xB7"), 2u);
  EXPECT_EQ(characterCount("\xFF\xFE"), 2u);
  EXPECT_EQ(characterCount("\xEF\xBF\xBF"), 1u);      // U+FFFF, the last that one unit holds
  EXPECT_EQ(characterCount("\xF0\x90\x80\x80"), 2u);  // U+10000
}

TEST(TextTest, DropsCharactersAndNotBytes) {
  EXPECT_EQ(withoutCharacters("\xC3\xA9xyz", 3), "z");
  EXPECT_EQ(withoutCharacters("\xF0\x9F\x93\xB7z", 1), "z");
  EXPECT_EQ(withoutCharacters("ab", 3), "");
}

TEST(TextTest, EndsAtTheFirstZero) {
  EXPECT_EQ(zeroTerminatedUtf8(text("ab")), "ab");
  EXPECT_EQ(zeroTerminatedUtf8(join(text("ab"), bytes({0, 0xFF}))), "ab");
  EXPECT_EQ(zeroTerminatedUtf8({}), "");
  EXPECT_EQ(zeroTerminatedUtf8(bytes({0xFF, 0})), std::nullopt);
}

}  // namespace
}  // namespace zel::test

#include "gateway/json/printable.h"

#include <gtest/gtest.h>

namespace zel::gateway {
namespace {

TEST(PrintableTest, KeepsLettersOfEveryScript) {
  const std::string text = "E1 \xC3\xA9 \xE6\xB0\xB4 \xF0\x9F\x93\xB7 \xD7\xA9 \xC2\xA0~";
  EXPECT_EQ(printable(text), text);
  EXPECT_EQ(withoutUnprintable(text), text);
  EXPECT_EQ(printableJson(text), text);
}

TEST(PrintableTest, ReplacesControlCharacters) {
  EXPECT_EQ(printable("a\x1b[31m\r\n\x7f\xC2\x80\xC2\x9B"
                      "31mz"),
            "a?[31m?????31mz");  // U+009B is a terminal's escape and bracket in one
}

TEST(PrintableTest, ReplacesWhatTurnsTheWritingAndWhatEndsLines) {
  for (const char* letter : {"\xD8\x9C", "\xE2\x80\x8E", "\xE2\x80\x8F", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAA",
                             "\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x81\xA9"}) {
    EXPECT_EQ(printable(std::string("gpj") + letter + "exe"), "gpj?exe");
  }
  for (const char* letter : {"\xE2\x80\x8D", "\xE2\x80\x90", "\xE2\x81\xA5", "\xE2\x81\xB0"}) {  // their neighbours
    EXPECT_EQ(printable(letter), letter);
  }
}

TEST(PrintableTest, ReplacesBytesThatAreNoText) {
  EXPECT_EQ(printable("\x9B"
                      "31m"),
            "?31m");
  EXPECT_EQ(printable("\xC3"), "?");                  // cut
  EXPECT_EQ(printable("\xC0\xAF"), "??");             // longer than it need be
  EXPECT_EQ(printable("\xE0\x82\x9B"), "???");        // U+009B, longer than it need be
  EXPECT_EQ(printable("\xED\xA0\x80"), "???");        // half a pair
  EXPECT_EQ(printable("\xF4\x90\x80\x80"), "????");   // beyond the last letter
  EXPECT_EQ(printable("\xFF\xC3\xA9"), "?\xC3\xA9");  // the rest is kept
}

TEST(PrintableTest, LeavesThemOutOfNames) {
  EXPECT_EQ(withoutUnprintable("a\x1b\xC2\x9B\xE2\x80\xAE\xFF.jpg"), "a.jpg");
}

TEST(PrintableTest, EscapesThemInJson) {
  EXPECT_EQ(printableJson("{\"name\":\"a\xC2\x9B\xE2\x80\xAE\x7F\"}"), R"({"name":"a\u009b\u202e\u007f"})");
}

}  // namespace
}  // namespace zel::gateway

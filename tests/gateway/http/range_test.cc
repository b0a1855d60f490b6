#include "gateway/http/range.h"

#include <gtest/gtest.h>

namespace zel::gateway {
namespace {

using Asked = std::variant<WholeFile, ByteRange, NoSuchRange>;

TEST(RangeTest, IsCountedFromTheFront) {
  EXPECT_EQ(rangeIn("bytes=0-0", 10), Asked(ByteRange{0, 1}));
  EXPECT_EQ(rangeIn("bytes=3-", 10), Asked(ByteRange{3, 7}));
  EXPECT_EQ(rangeIn("bytes=9-9", 10), Asked(ByteRange{9, 1}));
}

TEST(RangeTest, IsCountedFromTheEnd) {
  EXPECT_EQ(rangeIn("bytes=-3", 10), Asked(ByteRange{7, 3}));
  EXPECT_EQ(rangeIn("bytes=-11", 10), Asked(ByteRange{0, 10}));
}

TEST(RangeTest, EndsWithTheFile) { EXPECT_EQ(rangeIn("bytes=8-99", 10), Asked(ByteRange{8, 2})); }

TEST(RangeTest, BeyondTheFileIsNone) {
  EXPECT_EQ(rangeIn("bytes=10-", 10), Asked(NoSuchRange{}));
  EXPECT_EQ(rangeIn("bytes=-0", 10), Asked(NoSuchRange{}));
  EXPECT_EQ(rangeIn("bytes=0-", 0), Asked(NoSuchRange{}));
}

TEST(RangeTest, ThatCannotBeReadIsTheWholeFile) {
  for (const char* text : {"", "bytes", "bytes=", "bytes=-", "bytes=a-b", "bytes=5-4", "bytes=0-1,3-4", "lines=0-1",
                           "bytes=99999999999999999999-", "bytes=+1-2"})
    EXPECT_EQ(rangeIn(text, 10), Asked(WholeFile{})) << text;
}

}  // namespace
}  // namespace zel::gateway

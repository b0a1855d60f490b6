#include "media/media_buffer.h"

#include <gtest/gtest.h>

#include "media/c_buffer.h"
#include "tests/media/nal_bytes.h"

namespace zel::test {
namespace {

TEST(MediaBufferTest, CopiesItsBytesSilently) {
  testing::internal::CaptureStdout();
  Bytes source = text("abc");
  orq::MediaBuffer buffer(source.data(), 3, 40);
  source[0] = 'x';
  buffer.AppendData("de", 2);
  EXPECT_EQ(bytesOf(buffer), text("abcde"));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(MediaBufferTest, KeepsTheTimestampAlsoWithoutBytes) {
  const orq::MediaBuffer buffer(nullptr, 3, 18446744073709551615u);
  EXPECT_EQ(buffer.data(), nullptr);
  EXPECT_EQ(buffer.size(), 0);
  EXPECT_EQ(buffer.timestamp(), 18446744073709551615u);
}

TEST(MediaBufferTest, AppendsNothingForNullOrACountBelowOne) {
  orq::MediaBuffer buffer("abc", 3, 0);
  buffer.AppendData(nullptr, 2);
  buffer.AppendData("de", 0);
  buffer.AppendData("de", -1);
  EXPECT_EQ(bytesOf(buffer), text("abc"));
}

TEST(MediaBufferTest, RefusesToGrowBeyondItsSizesRange) {
  orq::MediaBuffer buffer("abc", 3, 0);
  buffer.AppendData("de", 2147483647);
  EXPECT_EQ(bytesOf(buffer), text("abc"));
}

TEST(CBufferTest, HoldsACopy) {
  Bytes source = text("abc");
  const CBuffer buffer(source.data(), 3);
  source[0] = 'x';
  EXPECT_EQ(Bytes(buffer.bytes().begin(), buffer.bytes().end()), text("abc"));
}

TEST(CBufferTest, MayBeEmpty) { EXPECT_EQ(CBuffer(nullptr, 0).size(), 0u); }

}  // namespace
}  // namespace zel::test

#include "media/buffer.h"

#include <gtest/gtest.h>

#include "tests/link/bytes.h"

namespace zel::test {
namespace {

class BufferTest : public testing::Test {
 protected:
  void SetUp() override { testing::internal::CaptureStdout(); }
  static std::string printed() {
    std::string text = testing::internal::GetCapturedStdout();
    testing::internal::CaptureStdout();
    return text;
  }
  void TearDown() override { testing::internal::GetCapturedStdout(); }
  static Bytes held(const orq::Buffer& buffer) { return Bytes(buffer.data(), buffer.data() + buffer.size()); }
};

TEST_F(BufferTest, CopiesItsBytesAndPrintsTheirCount) {
  const orq::Buffer buffer("abc", 3);
  EXPECT_EQ(printed(), "size is 3\n");
  EXPECT_EQ(held(buffer), text("abc"));
}

TEST_F(BufferTest, IsEmptyAndSilentWithoutBytes) {
  const orq::Buffer noBytes(nullptr, 3), zeroBytes("abc", 0), lessThanZero("abc", -1);
  for (const orq::Buffer* buffer : {&noBytes, &zeroBytes, &lessThanZero}) {
    EXPECT_EQ(buffer->data(), nullptr);
    EXPECT_EQ(buffer->size(), 0);
  }
  EXPECT_EQ(printed(), "");
}

TEST_F(BufferTest, PrintsTheCountOfTheFirstAppend) {
  orq::Buffer buffer(nullptr, 0);
  buffer.AppendData("ab", 2);
  EXPECT_EQ(printed(), "data is 2\n");
  EXPECT_EQ(held(buffer), text("ab"));
}

TEST_F(BufferTest, PrintsTheNewSizeOfLaterAppends) {
  orq::Buffer buffer("abc", 3);
  printed();
  buffer.AppendData("de", 2);
  EXPECT_EQ(printed(), "333size is 5\n");
  EXPECT_EQ(held(buffer), text("abcde"));
}

TEST_F(BufferTest, PrintsTheUnchangedSizeWhereNothingIsAppended) {
  orq::Buffer buffer("abc", 3);
  printed();
  buffer.AppendData(nullptr, 2);
  buffer.AppendData("de", 0);
  buffer.AppendData("de", -7);
  EXPECT_EQ(printed(), "000size is 3\n000size is 3\n000size is 3\n");
  EXPECT_EQ(held(buffer), text("abc"));
}

}  // namespace
}  // namespace zel::test

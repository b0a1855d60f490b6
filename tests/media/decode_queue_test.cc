#include "media/decode_queue.h"

#include <gtest/gtest.h>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

#include "tests/media/nal_bytes.h"

namespace zel::test {
namespace {

class DecodeQueueTest : public testing::Test {
 protected:
  // A unit that is known by its number.
  void append(int header, int number) {
    const Bytes data = prefixed({header, number});
    queue.append(std::make_shared<orq::MediaBuffer>(data.data(), static_cast<int>(data.size()), 0));
  }
  int takeNumber() { return queue.take()->data()[5]; }

  DecodeQueue queue;
};

TEST_F(DecodeQueueTest, GivesUnitsInTheirOrder) {
  append(0x65, 1);
  append(0x41, 2);
  EXPECT_EQ(takeNumber(), 1);
  EXPECT_EQ(takeNumber(), 2);
  EXPECT_EQ(queue.take(), nullptr);
}

TEST_F(DecodeQueueTest, HoldsFifteenAndDropsTheOldestWithTheSixteenth) {
  for (int i = 1; i <= 15; ++i) append(0x41, i);
  EXPECT_EQ(queue.size(), 15u);
  append(0x41, 16);
  EXPECT_EQ(queue.size(), 15u);
  EXPECT_EQ(takeNumber(), 2);
}

TEST_F(DecodeQueueTest, DropsNothingBehindAKeyUnitAtTheHead) {
  append(0x65, 1);
  for (int i = 2; i <= 40; ++i) append(0x41, i);
  EXPECT_EQ(queue.size(), 40u);
  EXPECT_EQ(takeNumber(), 1);
  append(0x41, 41);
  EXPECT_EQ(queue.size(), 39u);
  EXPECT_EQ(takeNumber(), 3);
}

TEST_F(DecodeQueueTest, DropsUpToAKeyUnitThatComesToTheHead) {
  append(0x41, 1);
  append(0x65, 2);
  for (int i = 3; i <= 30; ++i) append(0x41, i);
  EXPECT_EQ(takeNumber(), 2);
}

TEST_F(DecodeQueueTest, TakesAUnitWithoutAHeaderForNoKeyUnit) {
  queue.append(std::make_shared<orq::MediaBuffer>());
  for (int i = 1; i <= 15; ++i) append(0x41, i);
  EXPECT_EQ(takeNumber(), 1);
}

TEST_F(DecodeQueueTest, LetsEvenAKeyUnitGoBeforeTheMemoryFills) {
  const Bytes large = join(prefixed({0x65}), repeated(1 << 20, 7));
  for (int i = 0; i < 100; ++i) {
    queue.append(std::make_shared<orq::MediaBuffer>(large.data(), static_cast<int>(large.size()), i));
  }
  EXPECT_EQ(queue.size(), 63u);
  EXPECT_EQ(queue.take()->timestamp(), 37u);
}

TEST_F(DecodeQueueTest, HoldsSixtyFourMebibytesAndNoByteMore) {
  const Bytes half = join(prefixed({0x65}), repeated((32 << 20) - 5, 7));
  for (int i = 0; i < 2; ++i) {
    queue.append(std::make_shared<orq::MediaBuffer>(half.data(), static_cast<int>(half.size()), i));
  }
  EXPECT_EQ(queue.size(), 2u);
  EXPECT_EQ(queue.append(std::make_shared<orq::MediaBuffer>(half.data(), 1, 2)), 1u);
  EXPECT_EQ(queue.take()->timestamp(), 1u);
}

TEST_F(DecodeQueueTest, KeepsTheOnlyUnitHoweverLargeItIs) {
  const Bytes large = join(prefixed({0x65}), repeated(64 << 20, 7));
  EXPECT_EQ(queue.append(std::make_shared<orq::MediaBuffer>(large.data(), static_cast<int>(large.size()), 1)), 0u);
  EXPECT_EQ(queue.size(), 1u);
  append(0x41, 2);
  EXPECT_EQ(queue.size(), 1u);
  EXPECT_EQ(takeNumber(), 2);
}

// Each takes many times its own bytes.
TEST_F(DecodeQueueTest, HoldsAHundredThousandUnitsOfAFewBytesAndNotOneMore) {
  for (int i = 0; i < 100'000; ++i) append(0x65, i);
  EXPECT_EQ(queue.size(), 100'000u);
  append(0x65, 1);
  EXPECT_EQ(queue.size(), 100'000u);
}

TEST(PictureQueueTest, KeepsTheLatestFive) {
  PictureQueue queue;
  const auto picture = platform::MemoryPixelBuffer::create(2, 2);
  for (int i = 1; i <= 7; ++i) {
    queue.append(std::make_shared<orq::MediaPixelBuffer>(picture, i));
    EXPECT_LE(queue.size(), 5u);
  }
  for (int i = 3; i <= 7; ++i) EXPECT_EQ(queue.take()->timestamp, i);
  EXPECT_EQ(queue.take(), nullptr);
  EXPECT_EQ(picture.use_count(), 1);
}

}  // namespace
}  // namespace zel::test

#include "link/receive_buffer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/link/bytes.h"

namespace zel::test {
namespace {

using testing::ElementsAre;

TEST(ReceiveBufferTest, HoldsNothingAndNoMemoryAtFirst) {
  const ReceiveBuffer buffer;
  EXPECT_EQ(buffer.size(), 0u);
  EXPECT_EQ(buffer.capacity(), 0u);
}

TEST(ReceiveBufferTest, AppendsNothing) {
  ReceiveBuffer buffer;
  buffer.append({});
  EXPECT_EQ(buffer.capacity(), 0u);
}

TEST(ReceiveBufferTest, KeepsOrderAcrossConsuming) {
  ReceiveBuffer buffer;
  buffer.append(bytes({1, 2, 3, 4}));
  buffer.consume(3, 0);
  buffer.append(bytes({5, 6}));
  EXPECT_THAT(buffer.view(), ElementsAre(4, 5, 6));
}

TEST(ReceiveBufferTest, MovesARestOfAKibibyteToTheFrontAndNoLongerOne) {
  ReceiveBuffer buffer;
  buffer.append(repeated(5000, 1));
  const std::uint8_t* const front = buffer.view().data();
  buffer.consume(3975, 0);
  EXPECT_EQ(buffer.view().data(), front + 3975);
  buffer.consume(1, 0);
  EXPECT_EQ(buffer.view().data(), front);
}

TEST(ReceiveBufferTest, KeepsOrderWhenItRunsFullBehindAConsumedFrame) {
  ReceiveBuffer buffer;
  buffer.append(repeated(65536, 1));
  buffer.consume(30000, 0);
  buffer.append(repeated(40000, 2));  // 35536 and 40000 bytes no longer fit in 65536
  ASSERT_EQ(buffer.size(), 75536u);
  EXPECT_EQ(buffer.view()[35535], 1);
  EXPECT_EQ(buffer.view()[35536], 2);
}

TEST(ReceiveBufferTest, ReusesTheRoomOfConsumedBytes) {
  ReceiveBuffer buffer;
  buffer.append(repeated(65536, 1));
  buffer.consume(60000, 0);
  buffer.append(repeated(60000, 2));
  EXPECT_EQ(buffer.size(), 65536u);
  EXPECT_EQ(buffer.capacity(), 65536u);
}

TEST(ReceiveBufferTest, DoublesTowardTheAwaitedFrameAndNoFurther) {
  ReceiveBuffer buffer;
  buffer.append(repeated(65536, 0));
  buffer.consume(0, 200000);
  buffer.append(bytes({0}));
  EXPECT_EQ(buffer.capacity(), 131074u);  // 2 x 65537
  buffer.append(repeated(65537, 0));
  EXPECT_EQ(buffer.capacity(), 131074u);
  buffer.append(bytes({0}));
  EXPECT_EQ(buffer.capacity(), 200000u);
}

TEST(ReceiveBufferTest, GivesALargeFramesMemoryBack) {
  ReceiveBuffer buffer;
  buffer.append(repeated(10 * 1024 * 1024, 0));
  buffer.consume(10 * 1024 * 1024 - 3, 0);
  EXPECT_EQ(buffer.size(), 3u);
  EXPECT_EQ(buffer.capacity(), 65536u);
}

TEST(ReceiveBufferTest, KeepsALargeFramesMemoryForTheNextOne) {
  constexpr std::size_t kLarge = 10 * 1024 * 1024;
  ReceiveBuffer buffer;
  buffer.append(repeated(kLarge, 0));
  buffer.append(bytes({1, 2, 3}));
  const std::size_t before = buffer.capacity();
  buffer.consume(kLarge, kLarge);
  EXPECT_EQ(buffer.size(), 3u);
  EXPECT_EQ(buffer.capacity(), before);
}

TEST(ReceiveBufferTest, DoesNotGrowWhereTheBytesJustFit) {
  ReceiveBuffer buffer;
  buffer.append(repeated(65536, 1));
  buffer.consume(60000, 200000);
  buffer.append(repeated(60000, 2));
  EXPECT_EQ(buffer.capacity(), 65536u);
}

TEST(ReceiveBufferTest, LeavesTheHeldBytesWhereTheyAreWhereTheNewOnesJustFit) {
  ReceiveBuffer buffer;
  buffer.append(repeated(60000, 1));
  buffer.consume(30000, 0);
  const std::uint8_t* const held = buffer.view().data();
  buffer.append(repeated(5536, 2));  // up to the last of 65536 bytes
  EXPECT_EQ(buffer.view().data(), held);
  EXPECT_EQ(buffer.size(), 35536u);
}

TEST(ReceiveBufferTest, AwaitsNothingOnceItIsCleared) {
  ReceiveBuffer buffer;
  buffer.append(bytes({1, 2}));
  buffer.consume(0, 100);
  EXPECT_EQ(buffer.awaited(), 100u);
  buffer.clear();
  EXPECT_EQ(buffer.awaited(), 0u);
}

TEST(ReceiveBufferTest, ClearsWithoutLosingItsWorkingMemory) {
  ReceiveBuffer buffer;
  buffer.append(bytes({1, 2}));
  buffer.clear();
  EXPECT_EQ(buffer.size(), 0u);
  EXPECT_EQ(buffer.capacity(), 65536u);
}

}  // namespace
}  // namespace zel::test

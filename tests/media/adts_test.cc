#include "media/adts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/link/bytes.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Only the length of such a header is set.
Bytes header(int length) { return bytes({0xFF, 0xF1, 0, length >> 11, (length >> 3) & 0xFF, (length & 7) << 5, 0xFC}); }

std::vector<std::size_t> lengths(const Bytes& data) {
  std::vector<std::size_t> result;
  forEachAdtsFrame(data, [&](ByteView frame) { result.push_back(frame.size()); });
  return result;
}

TEST(AdtsTest, ReadsTheLengthFromThreeBytes) {
  EXPECT_EQ(adtsFrameLength(bytes({0, 0, 0, 0x03, 0xFF, 0xE0, 0})), 8191u);
  EXPECT_EQ(adtsFrameLength(bytes({0, 0, 0, 0xFD, 0x00, 0x1F, 0})), 2048u);  // the bits around it do not count
  EXPECT_EQ(adtsFrameLength(bytes({0, 0, 0, 0x00, 0x01, 0x20, 0})), 9u);
}

TEST(AdtsTest, WritesTheConfigurationOfLowComplexityAudio) {
  // 48 kHz (index 3), stereo, then 44.1 kHz (index 4), mono
  EXPECT_THAT(audioSpecificConfig(bytes({0xFF, 0xF1, 0x4C, 0x80, 0, 0, 0})), ElementsAre(0x11, 0x90));
  EXPECT_THAT(audioSpecificConfig(bytes({0xFF, 0xF1, 0x50, 0x40, 0, 0, 0})), ElementsAre(0x12, 0x08));
}

TEST(AdtsTest, WritesTwiceTheProfileAndEveryChannelBit) {
  EXPECT_THAT(audioSpecificConfig(bytes({0xFF, 0xF1, 0xFF, 0xFF, 0, 0, 0})), ElementsAre(0x37, 0xB8));
  EXPECT_THAT(audioSpecificConfig(bytes({0xFF, 0xF1, 0x00, 0x3F, 0, 0, 0})), ElementsAre(0x00, 0x00));
}

TEST(AdtsTest, SplitsFramesThatFollowEachOther) {
  EXPECT_THAT(lengths(join(header(9), bytes({1, 2}), header(7), header(8), bytes({3}))), ElementsAre(9, 7, 8));
}

TEST(AdtsTest, IgnoresSevenBytes) { EXPECT_THAT(lengths(header(7)), IsEmpty()); }

TEST(AdtsTest, LeavesAFrameOutThatRunsPastTheEnd) {
  EXPECT_THAT(lengths(join(header(8), bytes({1}), header(9), bytes({2}))), ElementsAre(8));
  EXPECT_THAT(lengths(join(header(8), bytes({1}), bytes({0xFF, 0xF1, 0, 0, 0}))), ElementsAre(8));
}

TEST(AdtsTest, StopsAtAFrameOfNoLength) { EXPECT_THAT(lengths(join(header(0), repeated(9, 0))), IsEmpty()); }

TEST(AdtsTest, StepsOverAFrameShorterThanItsHeader) {
  Bytes data = header(1);
  data = join(data, bytes({1, 1}));
  EXPECT_EQ(lengths(data).front(), 1u);
}

}  // namespace
}  // namespace zel::test

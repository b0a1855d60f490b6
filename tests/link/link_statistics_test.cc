#include <ZELTarkaSDK/LinkStatistics.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>

namespace zel::test {
namespace {

using testing::Each;

TEST(LinkStatisticsTest, BeginWithNothingAndNoRoundTrip) {
  const LinkStatistics statistics;
  EXPECT_THAT(statistics.frames, Each(0u));
  EXPECT_THAT(statistics.bytes, Each(0u));
  EXPECT_THAT((std::bit_cast<std::array<std::uint64_t, sizeof(DroppedFrames) / 8>>(statistics.dropped)), Each(0u));
  EXPECT_EQ(statistics.bytesReceived + statistics.bytesDiscarded, 0u);
  EXPECT_EQ(statistics.bytesWritten + statistics.bytesToWrite, 0u);
  EXPECT_EQ(statistics.markersFound + statistics.positionsLost + statistics.streamErrors, 0u);
  EXPECT_EQ(statistics.roundTrip, -1);
  EXPECT_EQ(statistics.resendsLeft, 0);
  EXPECT_EQ(statistics.lostForMemory, 0u);
}

}  // namespace
}  // namespace zel::test

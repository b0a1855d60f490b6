#include "link/frame_statistics.h"

#include <gtest/gtest.h>

namespace zel::test {
namespace {

TEST(FrameStatisticsTest, CountsTypesWithoutAConsumerAsOther) {
  FrameStatistics statistics;
  for (const std::uint16_t type : std::initializer_list<std::uint16_t>{0, 5, 6, 10, 65535})
    statistics.addFrame(type, 6);
  LinkStatistics copy;
  statistics.copyTo(copy);
  EXPECT_EQ(copy.frames[0], 5u);
  EXPECT_EQ(copy.bytes[0], 30u);
  EXPECT_EQ(copy.frames[5], 0u);
}

TEST(FrameStatisticsTest, CountsKnownTypesUnderTheirNumber) {
  FrameStatistics statistics;
  for (const std::uint16_t type : std::initializer_list<std::uint16_t>{1, 2, 3, 4, 7, 8, 9})
    statistics.addFrame(type, type);
  LinkStatistics copy;
  statistics.copyTo(copy);
  EXPECT_EQ(copy.frames[9], 1u);
  EXPECT_EQ(copy.bytes[9], 9u);
  EXPECT_EQ(copy.frames[0], 0u);
}

}  // namespace
}  // namespace zel::test

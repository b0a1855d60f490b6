#include <ZELTarkaSDK/LiveStatistics.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>

namespace zel::test {
namespace {

TEST(LiveStatisticsTest, BeginWithNothing) {
  EXPECT_THAT((std::bit_cast<std::array<std::uint64_t, 12>>(LiveStatistics{})), testing::Each(0u));
}

}  // namespace
}  // namespace zel::test

#include <ZELTarkaSDK/PreviewStatistics.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>

namespace zel::test {
namespace {

TEST(PreviewStatisticsTest, BeginWithNothing) {
  EXPECT_THAT((std::bit_cast<std::array<std::uint64_t, 4>>(PreviewStatistics{})), testing::Each(0u));
}

}  // namespace
}  // namespace zel::test

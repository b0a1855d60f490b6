#include "outputs/latency_histogram.h"

#include <gtest/gtest.h>

namespace zel {
namespace {

TEST(LatencyHistogramTest, TellsNothingOfNothing) { EXPECT_EQ(LatencyHistogram().quantile(0.5), std::nullopt); }

TEST(LatencyHistogramTest, TellsMedianAndNinetyNinePercent) {
  LatencyHistogram latency;
  for (int i = 1; i <= 100; ++i) latency.add(i);
  EXPECT_EQ(latency.quantile(0.5), 50);
  EXPECT_EQ(latency.quantile(0.99), 99);
  EXPECT_EQ(latency.quantile(1), 100);
}

TEST(LatencyHistogramTest, RoundsUpAndKeepsWithinItsBounds) {
  LatencyHistogram latency;
  latency.add(0.2);
  EXPECT_EQ(latency.quantile(1), 1);
  latency.add(-5);
  EXPECT_EQ(latency.quantile(0.5), 0);
  latency.add(1e9);
  EXPECT_EQ(latency.quantile(1), 9999);
}

}  // namespace
}  // namespace zel

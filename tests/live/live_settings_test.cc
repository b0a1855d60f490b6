#include "live/live_settings.h"

#include <gtest/gtest.h>

namespace zel::test {
namespace {

TEST(LiveSettingsTest, TakesTheRateFromTheResolution) {
  const std::uint64_t rates[] = {15, 20, 25, 30, 15, 20, 25, 30, 15, 20, 25, 30, 15, 20, 25, 30};
  for (std::uint64_t code = 0; code <= 15; ++code) EXPECT_EQ(LiveSettings(code, 2, 2, 1).fps.get(), rates[code]);
  EXPECT_EQ(LiveSettings(6, 2, 2, 1).fps.get(), 25u);
  EXPECT_EQ(LiveSettings(16, 2, 2, 1).fps.get(), 0u);
  EXPECT_EQ(LiveSettings(259, 2, 2, 1).fps.get(), 0u);  // its low byte alone would be 3
}

}  // namespace
}  // namespace zel::test

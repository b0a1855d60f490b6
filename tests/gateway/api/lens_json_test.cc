#include "gateway/api/lens_json.h"

#include <gtest/gtest.h>

namespace zel::gateway {
namespace {

TEST(LensJsonTest, HasEachLensInTheWordsOfItsPage) {
  const auto lens = lensJson(
      "2_750.000_760.000_761.000_1.000_0.300_-0.400_750.000_2280.000_760.000_179.800_-0.200_0.500_3040_1520_7");
  EXPECT_EQ(lens["width"], 3040);
  EXPECT_EQ(lens["height"], 1520);
  EXPECT_EQ(lens["projection"], "equidistant");
  EXPECT_EQ(lens["fieldOfView"], 195);
  ASSERT_EQ(lens["lenses"].size(), 2u);
  EXPECT_EQ(lens["lenses"][0],
            (nlohmann::ordered_json{
                {"radius", 750.0}, {"x", 760.0}, {"y", 761.0}, {"yaw", 1.0}, {"pitch", 0.3}, {"roll", -0.4}}));
}

TEST(LensJsonTest, OfAnUnknownModelHas200Degrees) {
  EXPECT_EQ(lensJson("1_750.000_760.000_760.000_0.000_0.000_0.000_1520_1520_9")["fieldOfView"], 200);
}

TEST(LensJsonTest, OfATextWithoutSenseHasNoLensAndSaysWhy) {
  const auto lens = lensJson("nonsense");
  EXPECT_TRUE(lens["lenses"].empty());
  EXPECT_TRUE(lens["width"].is_null());
  EXPECT_NE(lens["fault"], "");
}

}  // namespace
}  // namespace zel::gateway

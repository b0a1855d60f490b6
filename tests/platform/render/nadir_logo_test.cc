#include "platform/render/nadir_logo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace zel::render {
namespace {

constexpr PictureSize kDegrees{360, 180};  // a degree a pixel: row 179 is half a degree from the nadir

using Rgba = std::array<std::uint8_t, 4>;
constexpr Rgba kRed{255, 0, 0, 255}, kWhite{255, 255, 255, 255}, kBlack{0, 0, 0, 255}, kHalfRed{255, 0, 0, 128};

LogoImage halves(const Rgba& above, const Rgba& below, int width = 40, int height = 40) {
  LogoImage image{width, height, {}};
  for (int y = 0; y < height; ++y) {
    const Rgba& colour = y < height / 2 ? above : below;
    for (int x = 0; x < width; ++x) image.rgba.insert(image.rgba.end(), colour.begin(), colour.end());
  }
  return image;
}

int luma(const NadirLogo& logo, int longitude, int fromNadir, std::uint8_t ground = 200) {
  std::vector<std::uint8_t> row(360, ground);
  logo.drawLuma(static_cast<std::size_t>(179 - fromNadir), row.data());
  return row[static_cast<std::size_t>(180 + longitude)];
}

TEST(NadirLogoTest, CoversTwentyDegreesAroundTheNadir) {
  const NadirLogo logo(halves(kRed, kRed), 0, kDegrees);
  EXPECT_EQ(luma(logo, 0, 0), 76);  // 0.299 * 255
  EXPECT_EQ(luma(logo, 0, 18), 76);
  EXPECT_EQ(luma(logo, 0, 21), 200);
  EXPECT_EQ(luma(logo, -180, 18), 76);
}

TEST(NadirLogoTest, ReachesFartherAtItsCorners) {
  const NadirLogo logo(halves(kRed, kRed), 0, kDegrees);
  EXPECT_EQ(luma(logo, 45, 25), 76);  // the corner is at 28.3 degrees
  EXPECT_EQ(luma(logo, 0, 25), 200);
  EXPECT_EQ(logo.firstRow(1), 151u);
  EXPECT_EQ(logo.firstRow(2), 75u);
}

TEST(NadirLogoTest, HasItsTopForward) {
  const NadirLogo logo(halves(kWhite, kBlack), 0, kDegrees);
  EXPECT_EQ(luma(logo, 0, 10), 255);
  EXPECT_EQ(luma(logo, -180, 10), 0);
}

TEST(NadirLogoTest, TurnsClockwiseForWhoLooksDown) {
  const NadirLogo logo(halves(kWhite, kBlack), 90, kDegrees);
  EXPECT_EQ(luma(logo, 90, 10), 255);
  EXPECT_EQ(luma(logo, -90, 10), 0);
}

TEST(NadirLogoTest, LetsTheGroundThroughAsItsAlphaSays) {
  EXPECT_EQ(luma(NadirLogo(halves(kHalfRed, kHalfRed), 0, kDegrees), 0, 5), 138);  // 38 + 200 * 127 / 255
  EXPECT_EQ(luma(NadirLogo(halves({255, 0, 0, 0}, {0, 0, 0, 0}), 0, kDegrees), 0, 5), 200);
}

TEST(NadirLogoTest, ColoursTheChroma) {
  const NadirLogo logo(halves(kRed, kRed), 0, kDegrees);
  std::vector<std::uint8_t> row(360, 128);
  logo.drawChroma(88, row.data());
  EXPECT_EQ(row[180], 85);   // 128 - 0.168736 * 255
  EXPECT_EQ(row[181], 255);  // 128 + 0.5 * 255, at most 255
}

TEST(NadirLogoTest, HasTheMatrixOfThePictureBelowIt) {
  const NadirLogo logo(halves(kRed, kRed), 0, kDegrees, platform::ColourMatrix::bt709);
  EXPECT_EQ(luma(logo, 0, 5), 54);  // 0.2126 * 255
  std::vector<std::uint8_t> row(360, 128);
  logo.drawChroma(88, row.data());
  EXPECT_EQ(row[180], 99);   // 128 - 0.114572 * 255
  EXPECT_EQ(row[181], 255);  // 128 + 0.5 * 255, at most 255
}

TEST(NadirLogoTest, KeepsItsShapeIfItIsWide) {
  const NadirLogo logo(halves(kRed, kRed, 40, 20), 0, kDegrees);
  EXPECT_EQ(luma(logo, 90, 18), 76);
  EXPECT_EQ(luma(logo, 0, 8), 76);
  EXPECT_EQ(luma(logo, 0, 12), 200);
}

TEST(NadirLogoTest, IsMadeSmallerWithoutLosingItsMean) {
  LogoImage stripes{1024, 1024, {}};
  for (int pixel = 0; pixel < 1024 * 1024; ++pixel) {
    const Rgba& colour = pixel % 2 == 0 ? kWhite : kBlack;
    stripes.rgba.insert(stripes.rgba.end(), colour.begin(), colour.end());
  }
  EXPECT_EQ(luma(NadirLogo(stripes, 0, kDegrees), 30, 9), 128);
}

TEST(NadirLogoTest, TakesOnlyImagesThatHoldTheirPixels) {
  EXPECT_TRUE(isUsable({1, 1, {1, 2, 3, 4}}));
  EXPECT_FALSE(isUsable({1, 1, {1, 2, 3}}));
  EXPECT_FALSE(isUsable({0, 1, {}}));
  EXPECT_FALSE(isUsable({-1, -1, {1, 2, 3, 4}}));
  EXPECT_FALSE(isUsable({4097, 1, std::vector<std::uint8_t>(4 * 4097)}));
}

TEST(NadirLogoTest, FitsTheSmallestPicture) {
  const NadirLogo logo(halves(kRed, kRed), 0, {2, 2});
  std::vector<std::uint8_t> row(2, 200);
  logo.drawLuma(logo.firstRow(1), row.data());
  logo.drawChroma(0, row.data());
}

}  // namespace
}  // namespace zel::render

#include "simulator/jpeg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "simulator/scene.h"
#include "tests/simulator/decoded_jpeg.h"
#include "tests/simulator/pixels.h"

namespace zel::simulator {
namespace {

using testing::ElementsAre;

Picture view() { return Scene(480, 240).at(1.5); }

double peakSignalToNoise(const Picture& a, const Picture& b) {  // decibels
  double squares = 0;
  for (std::size_t i = 0; i < a.rgb.size(); ++i) squares += std::pow(int{a.rgb[i]} - int{b.rgb[i]}, 2);
  return 10 * std::log10(255.0 * 255.0 * static_cast<double>(a.rgb.size()) / squares);
}

// Where the frame header begins: its marker, length (2), precision (1), height (2), width (2), components.
std::size_t frameHeader(const Bytes& file) {
  const Bytes marker{0xFF, 0xC0};
  return static_cast<std::size_t>(std::search(file.begin(), file.end(), marker.begin(), marker.end()) - file.begin());
}

TEST(JpegTest, KeepsSizeAndLooks) {
  const Picture before = view();
  const auto after = decodeJpeg(encodeJpeg(before, 95));
  ASSERT_TRUE(after.has_value());
  EXPECT_EQ(after->width, 480);
  EXPECT_EQ(after->height, 240);
  ASSERT_EQ(after->rgb.size(), before.rgb.size());
  EXPECT_GT(peakSignalToNoise(before, *after), 34);
}

TEST(JpegTest, KeepsColours) {
  Picture red = blackPicture(16, 16);
  for (int i = 0; i < 256; ++i) setPixel(red, i % 16, i / 16, 200, 30, 60);
  const auto after = decodeJpeg(encodeJpeg(red, 100));
  ASSERT_TRUE(after.has_value());
  EXPECT_NEAR(pixel(*after, 8, 8)[0], 200, 3);
  EXPECT_NEAR(pixel(*after, 8, 8)[1], 30, 3);
  EXPECT_NEAR(pixel(*after, 8, 8)[2], 60, 3);
}

TEST(JpegTest, TakesOddSizes) {
  const auto after = decodeJpeg(encodeJpeg(plainPicture(17, 5, 128), 80));
  ASSERT_TRUE(after.has_value());
  EXPECT_EQ(after->width, 17);
  EXPECT_EQ(after->height, 5);
}

TEST(JpegTest, HalvesTheChromaBothWays) {
  const Bytes file = encodeJpeg(view(), 80);
  const std::size_t header = frameHeader(file);
  ASSERT_LT(header + 19, file.size());
  EXPECT_EQ(file[header + 11], 0x22);  // luma
  EXPECT_EQ(file[header + 14], 0x11);
  EXPECT_EQ(file[header + 17], 0x11);
}

TEST(JpegTest, SpendsLessOnLessQuality) {
  EXPECT_LT(encodeJpeg(view(), 40).size(), encodeJpeg(view(), 90).size());
  EXPECT_EQ(encodeJpeg(view(), 0), encodeJpeg(view(), 1));
  EXPECT_EQ(encodeJpeg(view(), 101), encodeJpeg(view(), 100));
}

TEST(JpegTest, WritesNothingForWhatIsNoPicture) {
  EXPECT_EQ(encodeJpeg(Picture{}, 80), Bytes{});
  EXPECT_EQ(encodeJpeg(Picture{2, 2, Bytes(11)}, 80), Bytes{});
  EXPECT_EQ(encodeJpeg(Picture{-2, -2, Bytes(12)}, 80), Bytes{});
  EXPECT_EQ(encodeJpeg(plainPicture(65501, 1, 0), 80), Bytes{});
}

TEST(ExposureTest, DoublesTheLightPerStop) {
  Picture picture = blackPicture(2, 1);
  setPixel(picture, 0, 0, 0, 5, 64);
  setPixel(picture, 1, 0, 137, 188, 255);
  // 64 is 0.0513 of the light, 90 is 0.1022; 137 is 0.2502, 188 is 0.5029. Below 11 the curve is a straight line.
  EXPECT_THAT(exposed(picture, 1).rgb, ElementsAre(0, 10, 90, 188, 255, 255));
}

TEST(ExposureTest, HalvesTheLightPerStop) {
  Picture picture = blackPicture(2, 1);
  setPixel(picture, 0, 0, 0, 10, 90);
  setPixel(picture, 1, 0, 188, 255, 64);
  // 255 becomes 0.5 of the light, which is 187.5 on the curve; 64 becomes 0.0256, which is 44.4.
  EXPECT_THAT(exposed(picture, -1).rgb, ElementsAre(0, 5, 64, 137, 188, 44));
}

TEST(ExposureTest, KeepsThePictureAtNoStops) { EXPECT_EQ(exposed(view(), 0), view()); }

}  // namespace
}  // namespace zel::simulator

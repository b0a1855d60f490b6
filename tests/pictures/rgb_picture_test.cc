#include "pictures/rgb_picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zel {
namespace {

using platform::ColourMatrix;
using platform::MemoryPixelBuffer;
using testing::ElementsAre;

std::shared_ptr<MemoryPixelBuffer> filled(ColourMatrix matrix, int luma, int cb, int cr) {
  auto picture = MemoryPixelBuffer::filled(2, 2, static_cast<std::uint8_t>(luma), static_cast<std::uint8_t>(cb),
                                           static_cast<std::uint8_t>(cr));
  picture->setColour({matrix});
  return picture;
}

// The last of its pixels.
std::vector<int> bgr(ColourMatrix matrix, int luma, int cb, int cr) {
  const auto pixels = bgraOf(*filled(matrix, luma, cb, cr));
  EXPECT_EQ(pixels.size(), 16u);
  EXPECT_EQ(pixels[15], 255);
  return {pixels[12], pixels[13], pixels[14]};
}

TEST(RgbPictureTest, IsTheNearestByThePicturesMatrix) {
  // Blue 100 + 72 * 1.772 = 227.6, green 100 - 72 * 0.344 + 28 * 0.714 = 95.2, red 100 - 28 * 1.402 = 60.7.
  EXPECT_THAT(bgr(ColourMatrix::bt601, 100, 200, 100), ElementsAre(228, 95, 61));
  // Blue 100 + 72 * 1.8556 = 233.6, green 100 - 72 * 0.1873 + 28 * 0.4681 = 99.6, red 100 - 28 * 1.5748 = 55.9.
  EXPECT_THAT(bgr(ColourMatrix::bt709, 100, 200, 100), ElementsAre(234, 100, 56));
  // Blue 100 + 72 * 1.8814 = 235.5, green 100 - 72 * 0.1646 + 28 * 0.5714 = 104.2, red 100 - 28 * 1.4746 = 58.7.
  EXPECT_THAT(bgr(ColourMatrix::bt2020, 100, 200, 100), ElementsAre(235, 104, 59));
}

TEST(RgbPictureTest, HasBlackAndWhiteAtTheEndsOfTheRange) {
  EXPECT_THAT(bgr(ColourMatrix::bt601, 0, 128, 128), ElementsAre(0, 0, 0));
  EXPECT_THAT(bgr(ColourMatrix::bt709, 255, 128, 128), ElementsAre(255, 255, 255));
  EXPECT_THAT(bgr(ColourMatrix::bt601, 250, 255, 255), ElementsAre(255, 116, 255));  // 250 - 127 * 1.05827 = 115.6
}

// 3 x 3 pixels: each has its own luma, and the chroma of its quarter.
TEST(RgbPictureTest, TakesTheChromaThatStandsForThePixel) {
  const auto picture = MemoryPixelBuffer::create(3, 3);
  for (std::size_t y = 0; y < 3; ++y)
    for (std::size_t x = 0; x < 3; ++x) picture->lumaRow(y)[x] = static_cast<std::uint8_t>(10 * (3 * y + x));
  for (std::size_t y = 0; y < 2; ++y)
    for (std::size_t x = 0; x < 2; ++x)
      picture->chromaRow(y)[2 * x + 1] = static_cast<std::uint8_t>(128 + 10 * (2 * y + x));
  const auto pixels = bgraOf(*picture);
  ASSERT_EQ(pixels.size(), 36u);
  std::vector<int> red;
  for (std::size_t i = 2; i < pixels.size(); i += 4) red.push_back(pixels[i]);
  EXPECT_THAT(red, ElementsAre(0, 10, 20 + 14, 30, 40, 50 + 14, 60 + 28, 70 + 28, 80 + 42));
}

TEST(RgbPictureTest, FillsAPictureByItsMatrix) {
  const std::vector<std::uint8_t> yellow = {0, 190, 190, 255};
  std::vector<std::uint8_t> pixels;
  for (int i = 0; i < 9; ++i) pixels.insert(pixels.end(), yellow.begin(), yellow.end());
  const auto expect = [&pixels](ColourMatrix matrix, int luma, int cb, int cr) {
    const auto picture = MemoryPixelBuffer::create(3, 3);
    picture->setColour({matrix});
    setBgra(pixels, *picture);
    for (std::size_t i = 0; i < 9; ++i) EXPECT_EQ(picture->lumaRow(i / 3)[i % 3], luma);
    for (std::size_t i = 0; i < 4; ++i) {
      EXPECT_EQ(picture->chromaRow(i / 2)[i % 2 * 2], cb);
      EXPECT_EQ(picture->chromaRow(i / 2)[i % 2 * 2 + 1], cr);
    }
  };
  expect(ColourMatrix::bt601, 168, 33, 143);  // 190 * 0.886 = 168.3, 128 - 95, 128 + 21.7 / 1.402 = 143.4
  expect(ColourMatrix::bt709, 176, 33, 137);  // 190 * 0.9278 = 176.3, 128 - 95, 128 + 13.7 / 1.5748 = 136.7
}

TEST(RgbPictureTest, FillsChromaWithTheMeanOfThePixels) {
  const std::vector<std::uint8_t> pixels = {0, 0, 0, 255, 0, 0, 200, 255, 0, 0, 200, 255, 0, 0, 0, 255};
  const auto picture = MemoryPixelBuffer::create(2, 2);
  setBgra(pixels, *picture);
  EXPECT_THAT(picture->lumaRow(0), ElementsAre(0, 60));  // 200 * 0.299 = 59.8
  EXPECT_THAT(picture->lumaRow(1), ElementsAre(60, 0));
  EXPECT_THAT(picture->chromaRow(0), ElementsAre(111, 178));  // of 100: 128 - 16.9, 128 + 50
}

}  // namespace
}  // namespace zel

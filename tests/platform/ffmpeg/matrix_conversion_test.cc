#include "platform/ffmpeg/matrix_conversion.h"

#include <gtest/gtest.h>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

namespace zel::platform {
namespace {

std::shared_ptr<MemoryPixelBuffer> filled(ColourMatrix matrix, int luma, int cb, int cr, int width = 4,
                                          int height = 2) {
  const auto byte = [](int value) { return static_cast<std::uint8_t>(value); };
  auto picture = MemoryPixelBuffer::filled(width, height, byte(luma), byte(cb), byte(cr));
  picture->setColour({matrix, 1, 13});
  return picture;
}

void expectSamples(const PixelBuffer& picture, int luma, int cb, int cr) {
  for (std::size_t row = 0; row < picture.luma().rows; ++row) {
    for (std::size_t column = 0; column < picture.luma().rowBytes; ++column) {
      ASSERT_EQ(picture.luma().data[row * picture.luma().stride + column], luma) << column << " " << row;
      const std::uint8_t* pair = picture.chroma().data + row / 2 * picture.chroma().stride + column / 2 * 2;
      ASSERT_EQ(pair[0], cb) << column << " " << row;
      ASSERT_EQ(pair[1], cr) << column << " " << row;
    }
  }
}

// The eight bars of 75 %: red, green and blue of 191 or 0.
struct Bar {
  int by601[3], by709[3];
};
constexpr Bar kBars[] = {{{191, 128, 128}, {191, 128, 128}}, {{169, 33, 144}, {177, 33, 137}},
                         {{134, 160, 33}, {150, 150, 33}},   {{112, 65, 48}, {137, 54, 41}},
                         {{79, 191, 208}, {54, 202, 215}},   {{57, 96, 224}, {41, 106, 224}},
                         {{22, 224, 112}, {14, 224, 119}},   {{0, 128, 128}, {0, 128, 128}}};

TEST(MatrixConversionTest, GivesTheSamplesThatTheOtherMatrixHasForTheSameColour) {
  for (const auto& [by601, by709] : kBars) {
    const auto converted = inMatrix(filled(ColourMatrix::bt709, by709[0], by709[1], by709[2]), ColourMatrix::bt601);
    ASSERT_NE(converted, nullptr);
    EXPECT_NEAR(converted->luma().data[0], by601[0], 1);
    EXPECT_NEAR(converted->chroma().data[0], by601[1], 1);
    EXPECT_NEAR(converted->chroma().data[1], by601[2], 1);
    EXPECT_EQ(converted->colour(), (PictureColour{ColourMatrix::bt601, 1, 13}));
  }
}

TEST(MatrixConversionTest, ConvertsEveryPixelAlsoAtOddEdges) {
  // 709's 177, 33, 137: blue 177 - 95 * 1.8556 = 0.7, red 177 + 9 * 1.5748 = 191.2, green 177 + 17.8 - 4.2 = 190.6.
  // 601's luma of it 0.299 * 191.2 + 0.587 * 190.6 + 0.114 * 0.7 = 169.1, Cb 128 - 168.4 / 1.772 = 33.0, Cr 128 + 15.7.
  for (const auto& [width, height] : {std::pair(4, 2), std::pair(5, 3), std::pair(1, 1)})
    expectSamples(*inMatrix(filled(ColourMatrix::bt709, 177, 33, 137, width, height), ColourMatrix::bt601), 169, 33,
                  144);
}

TEST(MatrixConversionTest, LeavesAPictureOfThatMatrixAsItIs) {
  const auto picture = filled(ColourMatrix::bt709, 1, 2, 3);
  EXPECT_EQ(inMatrix(picture, ColourMatrix::bt709), picture);
}

TEST(MatrixConversionTest, TakesTheEndOfTheRangeForWhatLiesBehindIt) {
  // Red 455, green 172, blue 491: luma 293, Cb 239.7, Cr 243.7.
  expectSamples(*inMatrix(filled(ColourMatrix::bt709, 255, 255, 255), ColourMatrix::bt601), 255, 240, 244);
}

}  // namespace
}  // namespace zel::platform

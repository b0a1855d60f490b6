#include <ZELTarkaSDK/platform/picture_colour.h>

#include <gtest/gtest.h>

namespace zel::platform {
namespace {

TEST(PictureColourTest, ReadsTheNumbersOfMatricesAsFfmpegDoes) {
  EXPECT_EQ(colourMatrixOf(1), ColourMatrix::bt709);
  EXPECT_EQ(colourMatrixOf(4), ColourMatrix::fcc);
  EXPECT_EQ(colourMatrixOf(5), ColourMatrix::bt601);
  EXPECT_EQ(colourMatrixOf(6), ColourMatrix::bt601);
  EXPECT_EQ(colourMatrixOf(7), ColourMatrix::smpte240);
  EXPECT_EQ(colourMatrixOf(9), ColourMatrix::bt2020);
  EXPECT_EQ(colourMatrixOf(10), ColourMatrix::bt2020);
  for (const int number : {-1, 0, 2, 3, 8, 11, 14, 255}) EXPECT_EQ(colourMatrixOf(number), ColourMatrix::bt601);
}

TEST(PictureColourTest, GreyIsGreyByEveryMatrix) {
  for (const int number : {1, 4, 6, 7, 9}) {
    const ColourDifferences above = differencesOf(colourMatrixOf(number), 128, 128);
    EXPECT_EQ(above.red, 0) << number;
    EXPECT_EQ(above.green, 0) << number;
    EXPECT_EQ(above.blue, 0) << number;
  }
}

// The equations as the standards print them.
TEST(PictureColourTest, ChromaMovesRedGreenAndBlueAwayFromLuma) {
  const auto expect = [](ColourMatrix matrix, double red, double greenByCb, double greenByCr, double blue) {
    const ColourDifferences byCb = differencesOf(matrix, 228, 128), byCr = differencesOf(matrix, 128, 228);
    EXPECT_NEAR(byCr.red, 100 * red, 0.01);
    EXPECT_NEAR(byCb.red, 0, 1e-9);
    EXPECT_NEAR(byCb.green, -100 * greenByCb, 0.01);
    EXPECT_NEAR(byCr.green, -100 * greenByCr, 0.01);
    EXPECT_NEAR(byCb.blue, 100 * blue, 0.01);
    EXPECT_NEAR(byCr.blue, 0, 1e-9);
  };
  expect(ColourMatrix::bt601, 1.402, 0.344136, 0.714136, 1.772);
  expect(ColourMatrix::bt709, 1.5748, 0.187324, 0.468124, 1.8556);
  expect(ColourMatrix::fcc, 1.4, 0.331864, 0.711864, 1.78);
  expect(ColourMatrix::smpte240, 1.576, 0.226622, 0.476622, 1.826);
  expect(ColourMatrix::bt2020, 1.4746, 0.164553, 0.571353, 1.8814);
}

TEST(PictureColourTest, CompletesWhatIsUntoldByTheMatrix) {
  EXPECT_EQ(completed({}), (PictureColour{ColourMatrix::bt601, 6, 6}));
  EXPECT_EQ(completed({ColourMatrix::bt709}), (PictureColour{ColourMatrix::bt709, 1, 1}));
  EXPECT_EQ(completed({ColourMatrix::fcc}), (PictureColour{ColourMatrix::fcc, 4, 4}));
  EXPECT_EQ(completed({ColourMatrix::smpte240}), (PictureColour{ColourMatrix::smpte240, 7, 7}));
  EXPECT_EQ(completed({ColourMatrix::bt2020}), (PictureColour{ColourMatrix::bt2020, 9, 14}));
  EXPECT_EQ(completed({ColourMatrix::bt601, 0, 3}), (PictureColour{ColourMatrix::bt601, 6, 6}));  // reserved
}

TEST(PictureColourTest, LeavesWhatIsTold) {
  EXPECT_EQ(completed({ColourMatrix::bt601, 1, 13}), (PictureColour{ColourMatrix::bt601, 1, 13}));
  EXPECT_EQ(completed({ColourMatrix::bt709, 12, 2}), (PictureColour{ColourMatrix::bt709, 12, 1}));
}

}  // namespace
}  // namespace zel::platform

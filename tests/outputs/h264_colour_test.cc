#include "outputs/h264_pictures.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/outputs/test_film.h"

namespace zel {
namespace {

using Set = std::vector<std::uint8_t>;

// Baseline sequence parameter sets that differ in their video signal alone: none, the range, colours of which the
// primaries are 1, the transfer 13 and the matrix 7, and both.
const Set kUntold{0x67, 0x42, 0x00, 0x0D, 0xA6, 0x81, 0x60, 0x94, 0x40};
const Set kFullRange{0x67, 0x42, 0x00, 0x0D, 0xA6, 0x81, 0x60, 0x94, 0x9B, 0x01};
const Set kLimitedColours{0x67, 0x42, 0x00, 0x0D, 0xA6, 0x81, 0x60, 0x94, 0x9A, 0x80, 0x86, 0x83, 0x81};
const Set kFullColours{0x67, 0x42, 0x00, 0x0D, 0xA6, 0x81, 0x60, 0x94, 0x9B, 0x80, 0x86, 0x83, 0x81};

TEST(H264ColourTest, IsWhatTheParameterSetTells) {
  EXPECT_EQ(colourOfPictures(kLimitedColours), (VideoColour{false, 1, 13, 7}));
  EXPECT_EQ(colourOfPictures(kFullColours), (VideoColour{true, 1, 13, 7}));
}

TEST(H264ColourTest, IsLimitedRangeAndBt601WhereNothingIsTold) {
  EXPECT_EQ(colourOfPictures(kUntold), (VideoColour{false, 6, 6, 6}));
  EXPECT_EQ(colourOfPictures(kFullRange), (VideoColour{true, 6, 6, 6}));
  EXPECT_EQ(colourOfPictures({}), (VideoColour{false, 6, 6, 6}));
  EXPECT_EQ(colourOfPictures(Set{0x67, 1, 2}), (VideoColour{false, 6, 6, 6}));
}

TEST(H264ColourTest, FillsInWhatIsLeftOut) {
  // Primaries 2, transfer 3 (reserved), matrix 1.
  const Set untoldBeside709{0x67, 0x42, 0x00, 0x0D, 0xA6, 0x81, 0x60, 0x94, 0x9A, 0x81, 0x01, 0x80, 0x81};
  EXPECT_EQ(colourOfPictures(untoldBeside709), (VideoColour{false, 1, 1, 1}));
}

TEST(H264ColourTest, LeavesAMatrixAsItIsToldThatIsReadAsAnotherOne) {
  const Set ofPal{0x67, 0x42, 0x00, 0x0D, 0xA6, 0x81, 0x60, 0x94, 0x9A, 0x82, 0x83, 0x02, 0x81};
  EXPECT_EQ(colourOfPictures(ofPal), (VideoColour{false, 5, 6, 5}));
  const Set withoutLuma{0x67, 0x42, 0x00, 0x0D, 0xA6, 0x81, 0x60, 0x94, 0x9A, 0x81, 0x01, 0x04, 0x01};
  EXPECT_EQ(colourOfPictures(withoutLuma), (VideoColour{false, 6, 6, 8}));
}

TEST(H264ColourTest, IsFullRangeForWhatTheEncoderMakes) {
  const TestFilm film(1);
  EXPECT_EQ(colourOfPictures(film.headers.sps.bytes()), (VideoColour{true, 6, 6, 6}));
}

}  // namespace
}  // namespace zel

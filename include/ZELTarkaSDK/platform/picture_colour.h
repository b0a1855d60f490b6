#pragma once

#include <cstdint>

namespace zel::platform {

// The matrix between red, green, blue and luma, chroma. The values are those of ITU-T H.273, as in streams and files.
enum class ColourMatrix : std::uint8_t { bt709 = 1, fcc = 4, bt601 = 6, smpte240 = 7, bt2020 = 9 };

// The matrix of an H.273 number, as FFmpeg reads it: BT.2020 with constant luminance is read as without it, and an
// unspecified, unknown or other number as BT.601.
constexpr ColourMatrix colourMatrixOf(int number) {
  switch (number) {
    case 1:
      return ColourMatrix::bt709;
    case 4:
      return ColourMatrix::fcc;
    case 7:
      return ColourMatrix::smpte240;
    case 9:
    case 10:
      return ColourMatrix::bt2020;
    default:
      return ColourMatrix::bt601;
  }
}

// The shares of red and blue in luma; the rest is green.
struct LumaShares {
  double red, blue;
};

constexpr LumaShares lumaSharesOf(ColourMatrix matrix) {
  switch (matrix) {
    case ColourMatrix::bt709:
      return {0.2126, 0.0722};
    case ColourMatrix::fcc:
      return {0.30, 0.11};
    case ColourMatrix::bt601:
      return {0.299, 0.114};
    case ColourMatrix::smpte240:
      return {0.212, 0.087};
    case ColourMatrix::bt2020:
      return {0.2627, 0.0593};
  }
  return {0.299, 0.114};
}

// The differences of red, green and blue from luma.
struct ColourDifferences {
  double red = 0, green = 0, blue = 0;
};

// Units:  cb and cr as in a picture of full range, 128 for no colour; the differences in the same steps.
constexpr ColourDifferences differencesOf(ColourMatrix matrix, double cb, double cr) {
  const LumaShares share = lumaSharesOf(matrix);
  const double red = 2 * (1 - share.red) * (cr - 128), blue = 2 * (1 - share.blue) * (cb - 128);
  return {red, -(share.red * red + share.blue * blue) / (1 - share.red - share.blue), blue};
}

// The colour description of a picture. The range is always full range.
struct PictureColour {
  static constexpr std::uint8_t kUntold = 2;

  ColourMatrix matrix = ColourMatrix::bt601;
  // Primaries and transfer characteristics as H.273 numbers. Nothing here depends on them; they are passed on for
  // display.
  std::uint8_t primaries = kUntold;
  std::uint8_t transfer = kUntold;

  bool operator==(const PictureColour&) const = default;
};

// Whether an H.273 number for primaries, transfer or matrix is specified: 0 and 3 are reserved. (As a matrix, 0 is RGB,
// which H.264 does not allow with 4:2:0 chroma.)
constexpr bool isTold(int number) { return number != 0 && number != PictureColour::kUntold && number != 3; }

// The same with unspecified numbers replaced by those that belong to the matrix. Some players ignore a matrix when the
// others are unspecified.
constexpr PictureColour completed(PictureColour colour) {
  const auto number = static_cast<std::uint8_t>(colour.matrix);
  if (!isTold(colour.primaries)) colour.primaries = number;
  // Only BT.2020 has two transfer numbers, by bit depth; 14 is the one for 10 bits.
  constexpr std::uint8_t kTransferOf2020 = 14;
  const bool is2020 = colour.matrix == ColourMatrix::bt2020;
  if (!isTold(colour.transfer)) colour.transfer = is2020 ? kTransferOf2020 : number;
  return colour;
}

}  // namespace zel::platform

#pragma once

#include <cstdint>

namespace zel::platform {

// How red, green and blue become luma and chroma. The values are those of ITU-T H.273, as streams and files tell them.
enum class ColourMatrix : std::uint8_t { bt709 = 1, fcc = 4, bt601 = 6, smpte240 = 7, bt2020 = 9 };

// The matrix of a number of H.273, as FFmpeg reads it: without constant luminance BT.2020 is read as with it, and every
// number that is not told, not known, or of no such matrix, as BT.601.
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
  double red = 0, blue = 0;
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

// How much red, green and blue are above luma.
struct ColourDifferences {
  double red = 0, green = 0, blue = 0;
};

// Units:  cb and cr as in a picture of full range, 128 for no colour; the differences in the same steps.
constexpr ColourDifferences differencesOf(ColourMatrix matrix, double cb, double cr) {
  const LumaShares share = lumaSharesOf(matrix);
  const double red = 2 * (1 - share.red) * (cr - 128), blue = 2 * (1 - share.blue) * (cb - 128);
  return {red, -(share.red * red + share.blue * blue) / (1 - share.red - share.blue), blue};
}

// What has to be known of a picture to show its colours; its range is always the full one.
struct PictureColour {
  static constexpr std::uint8_t kUntold = 2;

  ColourMatrix matrix = ColourMatrix::bt601;
  // Which red, green and blue, and how light becomes a value: numbers of H.273. Nothing here depends on them; they are
  // handed on to whoever shows the picture.
  std::uint8_t primaries = kUntold;
  std::uint8_t transfer = kUntold;

  bool operator==(const PictureColour&) const = default;
};

// Whether a number of H.273 for primaries, transfer or matrix tells anything: 0 and 3 are reserved. (As a matrix, 0 is
// red, green and blue themselves, which H.264 does not have with chroma of half the size.)
constexpr bool isTold(int number) { return number != 0 && number != PictureColour::kUntold && number != 3; }

// The same without anything untold: what goes with the matrix stands in its place. Some players drop a matrix beside
// which the others are untold.
constexpr PictureColour completed(PictureColour colour) {
  const auto number = static_cast<std::uint8_t>(colour.matrix);
  if (!isTold(colour.primaries)) colour.primaries = number;
  // BT.2020 alone has two numbers for its transfer, by the depth of the samples; 14 is that of the smaller one.
  constexpr std::uint8_t kTransferOf2020 = 14;
  const bool is2020 = colour.matrix == ColourMatrix::bt2020;
  if (!isTold(colour.transfer)) colour.transfer = is2020 ? kTransferOf2020 : number;
  return colour;
}

}  // namespace zel::platform

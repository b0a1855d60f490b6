#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/picture.h"

namespace zel::test {

// How a stream declares its colours. Without a number nothing is said but the range, and limited range is not said
// then.
struct ColourTags {
  const char* name;
  bool fullRange;
  std::optional<int> number;  // of ITU-T H.273, for primaries, transfer and matrix: 1 BT.709, 6 BT.601
};

using Rgb = std::array<double, 3>;

// White, yellow, cyan, green, magenta, red, blue and black, each at 75 %.
inline constexpr std::array<Rgb, 8> kBarColours = {Rgb{191, 191, 191}, {191, 191, 0}, {0, 191, 191}, {0, 191, 0},
                                                   {191, 0, 191},      {191, 0, 0},   {0, 0, 191},   {0, 0, 0}};

// Ten pictures of 640 x 320 in H.264, without loss, with start codes: in the middle of the left lens's circle the first
// four bars as a square of two by two, in that of the right lens's the others; around them grey.
std::vector<std::uint8_t> colourBars(const ColourTags& tags);

// The mean colour of each bar as the camera shows it, and as the panorama of 640 x 320 does.
std::array<Rgb, 8> barsIn(const simulator::Picture& picture);
std::array<Rgb, 8> barsInPanorama(const simulator::Picture& picture);

// A video file's first picture, in the colours that FFmpeg reads from the file, and whether nothing of them is left
// untold.
struct ReadPicture {
  simulator::Picture picture;
  bool isComplete = false;
};
std::optional<ReadPicture> firstPictureIn(const std::string& file);

}  // namespace zel::test

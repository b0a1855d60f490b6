#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include <ZELTarkaSDK/platform/picture_colour.h>

namespace zel::platform {

// The big-endian length before each unit of decoders and encoders.
inline constexpr std::size_t kLengthPrefix = 4;
// Before a unit in a stream that is cut by its contents.
inline constexpr std::array<std::uint8_t, 4> kStartCode = {0, 0, 0, 1};

// Appends the unit behind a start code.
void appendUnit(std::vector<std::uint8_t>& stream, std::span<const std::uint8_t> unit);

enum class H264UnitType : std::uint8_t { slice = 1, partition = 2, keySlice = 5, sequence = 7, picture = 8 };

inline H264UnitType typeOf(std::uint8_t header) { return static_cast<H264UnitType>(header & 0x1F); }

// The colour description; an undeclared range is limited. The numbers are those of ITU-T H.273.
struct H264Colour {
  bool fullRange = false;
  std::uint8_t primaries = PictureColour::kUntold, transfer = PictureColour::kUntold, matrix = PictureColour::kUntold;

  bool operator==(const H264Colour&) const = default;
};

// The content of a sequence parameter set (SPS).
struct H264Sequence {
  int profile = 0;
  int level = 0;         // ten times the level's number
  int chromaFormat = 1;  // 0 grey, 1 half the size both ways, 2 half the width, 3 full size
  int bitDepth = 8;      // the larger one of luma and chroma
  int widthInMacroblocks = 0, heightInMacroblocks = 0;
  int referencePictures = 0;
  bool reordersNever = false;         // declares that decoding order is display order
  bool reorderingIsDeclared = false;  // declares the reordering depth
  H264Colour colour;
};

// unit: from the header byte on, without start code.
// Errors: nothing for anything but a complete SPS.
std::optional<H264Sequence> parseH264Sequence(std::span<const std::uint8_t> unit);

// The largest number of pictures held back for reordering: the decoded picture buffer of the level.
int mostReorderedPictures(const H264Sequence& sequence);

// The first fields of a slice header.
struct H264SliceStart {
  bool key = false;            // of an IDR picture
  bool beginsPicture = false;  // its first macroblock is that of the picture
  bool bidirectional = false;  // a B slice, which occurs only with reordering
};

// unit: from the header byte on.
// Errors: nothing for anything but a slice, or when too short.
std::optional<H264SliceStart> parseH264SliceStart(std::span<const std::uint8_t> unit);

}  // namespace zel::platform

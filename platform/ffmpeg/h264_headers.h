#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include <ZELTarkaSDK/platform/picture_colour.h>

namespace zel::platform {

// Before a unit that decoders take and encoders give stands its length, big-endian.
inline constexpr std::size_t kLengthPrefix = 4;

enum class H264UnitType : std::uint8_t { slice = 1, partition = 2, keySlice = 5, sequence = 7, picture = 8 };

inline H264UnitType typeOf(std::uint8_t header) { return static_cast<H264UnitType>(header & 0x1F); }

// How samples become colours; a stream that does not tell its range is of limited range. The numbers are those of ITU-T
// H.273.
struct H264Colour {
  bool fullRange = false;
  std::uint8_t primaries = PictureColour::kUntold, transfer = PictureColour::kUntold, matrix = PictureColour::kUntold;

  bool operator==(const H264Colour&) const = default;
};

// What a sequence parameter set says about the pictures that follow.
struct H264Sequence {
  int profile = 0;
  int level = 0;         // ten times the level's number
  int chromaFormat = 1;  // 0 grey, 1 half the size both ways, 2 half the width, 3 full size
  int bitDepth = 8;      // the larger one of luma and chroma
  int widthInMacroblocks = 0, heightInMacroblocks = 0;
  int referencePictures = 0;
  bool reordersNever = false;         // the order of decoding is said to be that of display
  bool reorderingIsDeclared = false;  // how far pictures are reordered is said
  H264Colour colour;
};

// unit: from the header byte on, without start code.
// Errors: nothing for anything that is no whole sequence parameter set.
std::optional<H264Sequence> parseH264Sequence(std::span<const std::uint8_t> unit);

// How many pictures a stream may hold back for their order: what fits the decoder that its level asks for.
int mostReorderedPictures(const H264Sequence& sequence);

// The first words of a slice.
struct H264SliceStart {
  bool key = false;            // of a picture from which decoding can begin
  bool beginsPicture = false;  // its first macroblock is the picture's first
  bool bidirectional = false;  // a B slice, which only a stream with reordered pictures has
};

// unit: from the header byte on.
// Errors: nothing for what is no slice, or too short.
std::optional<H264SliceStart> parseH264SliceStart(std::span<const std::uint8_t> unit);

}  // namespace zel::platform

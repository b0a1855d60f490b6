#include "platform/h264/h264_headers.h"

#include <algorithm>

#include "platform/h264/bit_reader.h"

namespace zel::platform {
namespace {

constexpr int kBaseline = 66;
constexpr int kProfilesWithFormat[] = {44, 83, 86, 100, 110, 118, 122, 128, 134, 135, 138, 139, 244};
constexpr std::uint32_t kLargestSide = 1 << 14;  // macroblocks
constexpr std::uint32_t kMostReferences = 16;
constexpr int kMostHeldBack = 15;  // the size of libavcodec's list of delayed pictures

void skipScalingList(BitReader& in, int size) {
  std::int32_t last = 8, next = 8;
  for (int i = 0; i < size && in.ok(); ++i) {
    if (next != 0) next = (last + in.signedNumber()) & 0xFF;
    if (next != 0) last = next;
  }
}

void readFormat(BitReader& in, H264Sequence& sequence) {
  sequence.chromaFormat = static_cast<int>(in.number());
  if (sequence.chromaFormat == 3) in.skip(1);  // planes coded apart
  const std::uint32_t luma = in.number(), chroma = in.number();
  sequence.bitDepth = 8 + static_cast<int>(std::min(std::max(luma, chroma), 100u));
  in.skip(1);                 // lossless
  if (in.bit() == 0) return;  // scaling lists
  const int lists = sequence.chromaFormat == 3 ? 12 : 8;
  for (int list = 0; list < lists; ++list)
    if (in.bit() == 1) skipScalingList(in, list < 6 ? 16 : 64);
}

// The picture order count types. Type 2 has no fields: output order is decoding order.
void readOrderCount(BitReader& in, H264Sequence& sequence) {
  const std::uint32_t way = in.number();
  if (way == 0) in.number();
  sequence.reordersNever = sequence.profile == kBaseline || way == 2;
  if (way != 1) return;
  in.skip(1);
  in.signedNumber();
  in.signedNumber();
  const std::uint32_t count = in.number();
  for (std::uint32_t i = 0; i < count && in.ok(); ++i) in.signedNumber();
}

void readSize(BitReader& in, H264Sequence& sequence) {
  sequence.referencePictures = static_cast<int>(std::min(in.number(), kMostReferences));
  in.skip(1);  // gaps in the numbering are allowed
  sequence.widthInMacroblocks = static_cast<int>(std::min(in.number(), kLargestSide) + 1);
  const auto rows = static_cast<int>(std::min(in.number(), kLargestSide) + 1);
  const bool framesOnly = in.bit() == 1;
  sequence.heightInMacroblocks = framesOnly ? rows : 2 * rows;
  if (!framesOnly) in.skip(1);
  in.skip(1);
  if (in.bit() == 0) return;  // cropping
  for (int side = 0; side < 4; ++side) in.number();
}

void skipBuffering(BitReader& in) {
  const std::uint32_t count = in.number();
  in.skip(8);
  for (std::uint32_t i = 0; i <= count && in.ok(); ++i) {
    in.number();
    in.number();
    in.skip(1);
  }
  in.skip(20);
}

H264Colour readColour(BitReader& in) {
  H264Colour colour;
  in.skip(3);  // television standard
  colour.fullRange = in.bit() == 1;
  if (in.bit() == 0) return colour;
  for (std::uint8_t* number : {&colour.primaries, &colour.transfer, &colour.matrix})
    *number = static_cast<std::uint8_t>(in.bits(8));
  return colour;
}

void readPresentation(BitReader& in, H264Sequence& sequence) {
  constexpr std::uint32_t kOwnAspect = 255;
  if (in.bit() == 1 && in.bits(8) == kOwnAspect) in.skip(32);
  if (in.bit() == 1) in.skip(1);  // overscan
  if (in.bit() == 1) sequence.colour = readColour(in);
  if (in.bit() == 1) {  // place of the chroma samples
    in.number();
    in.number();
  }
  if (in.bit() == 1) in.skip(65);  // clock
}

void readUsability(BitReader& in, H264Sequence& sequence) {
  readPresentation(in, sequence);
  bool buffering = false;
  for (int kind = 0; kind < 2; ++kind) {
    if (in.bit() == 0) continue;
    skipBuffering(in);
    buffering = true;
  }
  in.skip(buffering ? 2 : 1);
  sequence.reorderingIsDeclared = in.bit() == 1;
  if (!sequence.reorderingIsDeclared) return;
  in.skip(1);
  for (int limit = 0; limit < 4; ++limit) in.number();
  if (in.number() == 0) sequence.reordersNever = true;
}

// The size of the decoded picture buffer of a level, in macroblocks.
int heldMacroblocks(int level) {
  struct Row {
    int level, macroblocks;
  };
  constexpr Row kRows[] = {{10, 396},   {11, 900},   {20, 2376},  {21, 4752},   {30, 8100},   {31, 18000},
                           {32, 20480}, {41, 32768}, {42, 34816}, {50, 110400}, {52, 184320}, {62, 696320}};
  for (const Row& row : kRows)
    if (level <= row.level) return row.macroblocks;
  return std::rbegin(kRows)->macroblocks;
}

}  // namespace

void appendUnit(std::vector<std::uint8_t>& stream, std::span<const std::uint8_t> unit) {
  stream.insert(stream.end(), kStartCode.begin(), kStartCode.end());
  stream.insert(stream.end(), unit.begin(), unit.end());
}

std::optional<H264Sequence> parseH264Sequence(std::span<const std::uint8_t> unit) {
  if (unit.empty() || typeOf(unit[0]) != H264UnitType::sequence) return std::nullopt;
  BitReader in(unit.subspan(1));
  H264Sequence sequence;
  sequence.profile = static_cast<int>(in.bits(8));
  in.skip(8);  // constraints
  sequence.level = static_cast<int>(in.bits(8));
  in.number();  // its own number
  if (std::ranges::count(kProfilesWithFormat, sequence.profile) != 0) readFormat(in, sequence);
  in.number();  // size of picture numbers
  readOrderCount(in, sequence);
  readSize(in, sequence);
  if (in.bit() == 1) readUsability(in, sequence);
  return in.ok() ? std::optional(sequence) : std::nullopt;
}

int mostReorderedPictures(const H264Sequence& sequence) {
  const int size = std::max(1, sequence.widthInMacroblocks * sequence.heightInMacroblocks);
  const int held = std::max(heldMacroblocks(sequence.level) / size, sequence.referencePictures);
  return std::clamp(held, 1, kMostHeldBack);
}

std::optional<H264SliceStart> parseH264SliceStart(std::span<const std::uint8_t> unit) {
  if (unit.empty()) return std::nullopt;
  const H264UnitType type = typeOf(unit[0]);
  const bool slice = type == H264UnitType::slice || type == H264UnitType::partition || type == H264UnitType::keySlice;
  if (!slice) return std::nullopt;
  BitReader in(unit.subspan(1));
  H264SliceStart start;
  start.key = type == H264UnitType::keySlice;
  start.beginsPicture = in.number() == 0;
  start.bidirectional = in.number() % 5 == 1;
  return in.ok() ? std::optional(start) : std::nullopt;
}

}  // namespace zel::platform

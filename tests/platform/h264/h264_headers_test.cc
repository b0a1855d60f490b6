#include "platform/h264/h264_headers.h"

#include <gtest/gtest.h>

#include "platform/h264/bit_reader.h"
#include "tests/platform/ffmpeg/annex_b.h"

namespace zel::platform {
namespace {

using test::Unit;

TEST(BitReaderTest, ReadsExpGolombNumbers) {
  const Unit bytes{0xA6, 0x42, 0x98, 0xE2, 0x00};  // 1 010 011 00100 00101 00110 00111 0001000
  BitReader in(bytes);
  for (std::uint32_t expected = 0; expected < 7; ++expected) EXPECT_EQ(in.number(), expected);
  EXPECT_EQ(in.number(), 7u);
  EXPECT_TRUE(in.ok());
}

TEST(BitReaderTest, ReadsSignedNumbers) {
  const Unit bytes{0xA6, 0x42, 0x80};  // 1 010 011 00100 00101
  BitReader in(bytes);
  for (const std::int32_t expected : {0, 1, -1, 2, -2}) EXPECT_EQ(in.signedNumber(), expected);
}

TEST(BitReaderTest, LeavesOutTheBytePutInAgainstAFalseStartCode) {
  const Unit bytes{0, 0, 3, 1, 0, 0, 3};
  BitReader in(bytes);
  EXPECT_EQ(in.bits(24), 1u);
  EXPECT_EQ(in.bits(16), 0u);
  EXPECT_TRUE(in.ok());
  EXPECT_EQ(in.bit(), 0u);
  EXPECT_FALSE(in.ok());
}

TEST(BitReaderTest, FailsForGoodBehindTheEnd) {
  const Unit bytes{0xFF};
  BitReader in(bytes);
  EXPECT_EQ(in.bits(9), 0u);
  EXPECT_FALSE(in.ok());
  EXPECT_EQ(in.number(), 0u);
}

TEST(BitReaderTest, TakesNoNumberOfMoreThan32Bits) {
  const Unit bytes{0, 0, 0, 0, 0x80, 0, 0, 0, 0, 0};
  BitReader in(bytes);
  in.number();
  EXPECT_FALSE(in.ok());
}

// Baseline, level 1.3:  number 0 (1), picture numbers 1 (010), order count 2 (011), one reference (010), no gaps (0),
// 22 columns (000010110), 18 rows (000010010), frames only (1), (0), no cropping (0), no usability (0), stop bit (1).
// 1010 0110 1000 0001 0110 0000 1001 0100 01
const Unit kBaseline{0x67, 0x42, 0x00, 0x0D, 0xA6, 0x81, 0x60, 0x94, 0x40};

TEST(H264SequenceTest, ReadsABaselineStream) {
  const auto sequence = parseH264Sequence(kBaseline);
  ASSERT_TRUE(sequence.has_value());
  EXPECT_EQ(sequence->profile, 66);
  EXPECT_EQ(sequence->level, 13);
  EXPECT_EQ(sequence->chromaFormat, 1);
  EXPECT_EQ(sequence->bitDepth, 8);
  EXPECT_EQ(sequence->widthInMacroblocks, 22);
  EXPECT_EQ(sequence->heightInMacroblocks, 18);
  EXPECT_EQ(sequence->referencePictures, 1);
  EXPECT_TRUE(sequence->reordersNever);
  EXPECT_FALSE(sequence->reorderingIsDeclared);
}

// The same with usability (1): no aspect (0), no overscan (0), a video signal (1) of standard 5 (101), its range, and
// where it tells colours (1) three bytes; no place of chroma (0), no clock (0), no buffering (00), no structure (0), no
// limits (0).
const Unit kFullRange{0x67, 0x42, 0x00, 0x0D, 0xA6, 0x81, 0x60, 0x94, 0x9B, 0x01};
const Unit kLimitedColours{0x67, 0x42, 0x00, 0x0D, 0xA6, 0x81, 0x60, 0x94, 0x9A, 0x80, 0x86, 0x83, 0x81};
const Unit kFullColours{0x67, 0x42, 0x00, 0x0D, 0xA6, 0x81, 0x60, 0x94, 0x9B, 0x80, 0x86, 0x83, 0x81};

TEST(H264SequenceTest, TellsItsColours) {
  EXPECT_EQ(parseH264Sequence(kBaseline)->colour, (H264Colour{false, 2, 2, 2}));
  EXPECT_EQ(parseH264Sequence(kFullRange)->colour, (H264Colour{true, 2, 2, 2}));
  EXPECT_EQ(parseH264Sequence(kLimitedColours)->colour, (H264Colour{false, 1, 13, 7}));
  EXPECT_EQ(parseH264Sequence(kFullColours)->colour, (H264Colour{true, 1, 13, 7}));
}

TEST(H264SequenceTest, IsNothingWhenItIsCutWithinItsColours) {
  for (std::size_t size = kBaseline.size(); size + 1 < kFullColours.size(); ++size)
    EXPECT_FALSE(parseH264Sequence({kFullColours.data(), size}).has_value()) << size;
}

TEST(H264SequenceTest, IsNothingWhenItIsCut) {
  for (std::size_t size = 0; size + 1 < kBaseline.size(); ++size)
    EXPECT_FALSE(parseH264Sequence({kBaseline.data(), size}).has_value()) << size;
}

TEST(H264SequenceTest, IsNothingBehindAnotherHeader) {
  Unit slice = kBaseline;
  slice[0] = 0x65;
  EXPECT_FALSE(parseH264Sequence(slice).has_value());
}

TEST(H264SequenceTest, HoldsAsManyPicturesAsItsLevelAllows) {
  H264Sequence sequence;
  sequence.level = 31;  // 18000 macroblocks
  sequence.widthInMacroblocks = 80;
  sequence.heightInMacroblocks = 45;
  EXPECT_EQ(mostReorderedPictures(sequence), 5);
  sequence.referencePictures = 7;  // says more than its level allows
  EXPECT_EQ(mostReorderedPictures(sequence), 7);
  sequence.widthInMacroblocks = sequence.heightInMacroblocks = 2;
  EXPECT_EQ(mostReorderedPictures(sequence), 15);
  sequence.level = 10;  // 396
  sequence.referencePictures = 0;
  sequence.widthInMacroblocks = sequence.heightInMacroblocks = 100;
  EXPECT_EQ(mostReorderedPictures(sequence), 1);
}

TEST(H264SliceStartTest, TellsTheFirstSliceFromThoseThatGoOn) {
  const auto first =
      parseH264SliceStart(Unit{0x65, 0xB8, 0x40});  // 1 011 1000: macroblock 0, I is 00111 = 6 or 00001000 = 7
  ASSERT_TRUE(first.has_value());
  EXPECT_TRUE(first->key);
  EXPECT_TRUE(first->beginsPicture);
  const auto next = parseH264SliceStart(Unit{0x41, 0x62, 0x40});  // 011 00010 0100: macroblock 2, P
  ASSERT_TRUE(next.has_value());
  EXPECT_FALSE(next->key);
  EXPECT_FALSE(next->beginsPicture);
}

TEST(H264SliceStartTest, KnowsBSlicesOfBothNumbers) {
  EXPECT_TRUE(parseH264SliceStart(Unit{0x01, 0xA0})->bidirectional);   // 1 010: 1
  EXPECT_TRUE(parseH264SliceStart(Unit{0x01, 0x9C})->bidirectional);   // 1 00111: 6
  EXPECT_FALSE(parseH264SliceStart(Unit{0x41, 0xC0})->bidirectional);  // 1 1: 0
}

TEST(H264SliceStartTest, IsNothingForWhatIsNoSlice) {
  EXPECT_FALSE(parseH264SliceStart({}).has_value());
  EXPECT_FALSE(parseH264SliceStart(Unit{0x65}).has_value());
  for (const int type : {0, 3, 4, 6, 7, 8, 9, 14, 31})
    EXPECT_FALSE(parseH264SliceStart(Unit{static_cast<std::uint8_t>(type), 0xB8, 0x40}).has_value()) << type;
}

}  // namespace
}  // namespace zel::platform

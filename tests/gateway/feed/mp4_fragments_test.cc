#include "gateway/feed/mp4_fragments.h"

#include <gmock/gmock.h>

#include "tests/gateway/feed/feed_bytes.h"

namespace zel::gateway::test {
namespace {

using ::testing::ElementsAre;

StreamDescription described() { return *describe(smallHeaders(), 30); }

// Whether the bytes stand somewhere in the others.
bool contains(const Bytes& bytes, const Bytes& part) {
  return std::search(bytes.begin(), bytes.end(), part.begin(), part.end()) != bytes.end();
}

TEST(Mp4FragmentsTest, TheFragmentOfAPictureIsLaidOutAsWorkedOutByHand) {
  Mp4Fragments fragments;
  EXPECT_EQ(fragments.fragment(picture(0x0102030405, true, 2), described()),
            (Bytes{0, 0, 0,    100,  'm', 'o', 'o', 'f',                               //
                   0, 0, 0,    16,   'm', 'f', 'h', 'd', 0, 0, 0, 0, 0,    0,   0, 1,  // its number
                   0, 0, 0,    76,   't', 'r', 'a', 'f',                               //
                   0, 0, 0,    16,   't', 'f', 'h', 'd', 0, 2, 0, 0, 0,    0,   0, 1,  // from the moof; track 1
                   0, 0, 0,    20,   't', 'f', 'd', 't', 1, 0, 0, 0, 0,    0,   0, 1, 2, 3, 4, 5,    // microseconds
                   0, 0, 0,    32,   't', 'r', 'u', 'n', 0, 0, 7, 1, 0,    0,   0, 1, 0, 0, 0, 108,  // one; where
                   0, 0, 0x82, 0x35, 0,   0,   0,   6,   2, 0, 0, 0,                 // 33,333 us; 6 bytes; key
                   0, 0, 0,    14,   'm', 'd', 'a', 't', 0, 0, 0, 2, 0x65, 0x77}));  //
}

TEST(Mp4FragmentsTest, TheFragmentOfAFrameOfSoundHasTheTimeInItsSamples) {
  Mp4Fragments fragments;
  const auto made = fragments.fragment(sound(1'000'000), described());
  ASSERT_TRUE(made);
  const auto read = fragmentsIn(*made);
  ASSERT_EQ(read.size(), 1U);
  EXPECT_EQ(read[0].track, 2U);
  EXPECT_EQ(read[0].time, 48'000U);
  EXPECT_EQ(read[0].duration, 1024U);
  EXPECT_EQ(read[0].sample, (Bytes{0x22, 0x22, 0x22}));
}

TEST(Mp4FragmentsTest, SoundWithoutGapsHasNoneInItsTrack) {
  Mp4Fragments fragments;
  std::uint64_t expected = 0;
  for (std::int64_t frame = 0; frame < 1'000; ++frame, expected += 1024) {
    const auto made = fragments.fragment(sound(frame * 1024 * 1'000'000 / 48'000), described());
    ASSERT_EQ(fragmentsIn(*made).at(0).time, expected) << frame;
  }
  // A gap of 10 ms stays one.
  const auto late = fragments.fragment(sound(1'000LL * 1024 * 1'000'000 / 48'000 + 10'000), described());
  EXPECT_EQ(fragmentsIn(*late).at(0).time, expected + 480);
}

TEST(Mp4FragmentsTest, SlicesGetLengthsAndSetsAndDelimitersAreLeftOut) {
  MediaPacket several = picture(0, true);
  several.data = ZELData(Bytes{0, 0, 0, 1,    0x09, 0xF0,                       // delimiter
                               0, 0, 0, 1,    0x67, 0x42, 0, 0, 1, 0x68, 0xCE,  // parameter sets
                               0, 0, 1, 0x06, 5,                                // information beside the picture
                               0, 0, 0, 1,    0x65, 1,    0, 0, 1, 0x65, 2,    3});
  Mp4Fragments fragments;
  const auto read = fragmentsIn(*fragments.fragment(several, described()));
  ASSERT_EQ(read.size(), 1U);
  EXPECT_EQ(read[0].sample, (Bytes{0, 0, 0, 2, 0x06, 5, 0, 0, 0, 2, 0x65, 1, 0, 0, 0, 3, 0x65, 2, 3}));
}

TEST(Mp4FragmentsTest, WhatHoldsNothingMakesNoFragment) {
  Mp4Fragments fragments;
  MediaPacket empty = picture(0);
  empty.data = {};
  EXPECT_FALSE(fragments.fragment(empty, described()));
  EXPECT_FALSE(fragments.fragment(sound(0, 0), described()));
  StreamHeaders silent = smallHeaders();
  silent.audioConfig = {};
  EXPECT_FALSE(fragments.fragment(sound(0), *describe(silent, 30)));
}

TEST(Mp4FragmentsTest, TheBeginningStatesSetsColourAndSound) {
  const Bytes beginning = mp4Beginning(described());
  EXPECT_THAT(namesOfBoxes(beginning), ElementsAre("ftyp", "moov"));
  EXPECT_TRUE(contains(beginning, {0,    0, 0, 26,   'a',  'v',  'c',  'C',  1, 0x42, 0xC0, 0x1F, 0xFF,
                                   0xE1, 0, 5, 0x67, 0x42, 0xC0, 0x1F, 0xAA, 1, 0,    2,    0x68, 0xCE}));
  EXPECT_TRUE(contains(beginning, {0, 0, 0, 19, 'c', 'o', 'l', 'r', 'n', 'c', 'l', 'x', 0, 6, 0, 6, 0, 6, 0x80}));
  EXPECT_TRUE(contains(beginning, {0, 0,  0,    39,   'e', 's', 'd', 's', 0, 0, 0, 0,           //
                                   3, 25, 0,    0,    0,                                        // the stream
                                   4, 17, 0x40, 0x15, 0,   0,   0,   0,   0, 0, 0, 0, 0, 0, 0,  // its decoder
                                   5, 2,  0x11, 0x88, 6,   1,   2}));
  EXPECT_TRUE(contains(beginning, {'m', 'v', 'e', 'x'}));
}

TEST(Mp4FragmentsTest, TheBeginningOfAStreamWithoutSoundHasOneTrack) {
  StreamHeaders headers = smallHeaders();
  headers.audioConfig = {};
  const Bytes beginning = mp4Beginning(*describe(headers, 30));
  EXPECT_FALSE(contains(beginning, {'s', 'o', 'u', 'n'}));
  EXPECT_TRUE(contains(beginning, {'v', 'i', 'd', 'e'}));
}

}  // namespace
}  // namespace zel::gateway::test

#include "platform/ffmpeg/h264_decoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "platform/h264/h264_headers.h"
#include "tests/platform/ffmpeg/streams/decoded_stream.h"
#include "tests/platform/ffmpeg/streams/stream_maker.h"

namespace zel::platform {
namespace {

using test::DecodedStream;
using test::lengthPrefixed;
using test::makeStream;
using test::StreamPlan;
using test::Unit;
using testing::ElementsAre;

std::unique_ptr<VideoDecoder> decoderFor(const std::vector<Unit>& units, int threads = 1) {
  LibavVideoDecoders decoders({threads});
  return decoders.create(test::firstOf(units, 7), test::firstOf(units, 8)).decoder;
}

DecodedStream decoded(const std::vector<Unit>& units, int threads = 1) {
  LibavVideoDecoders decoders({threads});
  return test::decodeAll(decoders, units);
}

std::vector<std::int64_t> timestampsOf(const DecodedStream& stream) {
  std::vector<std::int64_t> times;
  for (const DecodedPicture& picture : stream.pictures) times.push_back(picture.timestamp);
  return times;
}

const StreamPlan kThreeSlices{.pictures = 4, .options = {{"x264-params", "slices=3"}}};
const StreamPlan kReordered{.pictures = 8,
                            .options = {{"tune", "psnr"},
                                        {"preset", "veryfast"},
                                        {"bf", "2"},
                                        {"x264-params", "b-adapt=0:b-pyramid=0:scenecut=0:rc-lookahead=2"}}};

TEST(H264DecoderTest, GivesAPictureOfOneSliceInTheCallThatBringsIt) {
  const auto units = makeStream({.pictures = 5});
  const auto decoder = decoderFor(units);
  ASSERT_NE(decoder, nullptr);
  std::int64_t time = 7000;
  for (const Unit& slice : test::slicesOf(units)) {
    const DecodeResult result = decoder->decode(lengthPrefixed(slice), ++time);
    ASSERT_EQ(result.status, DecodeStatus::picture);
    EXPECT_EQ(result.picture.timestamp, time);
    EXPECT_EQ(result.picture.pixelBuffer->width(), 64);
    EXPECT_EQ(result.picture.pixelBuffer->height(), 48);
  }
  EXPECT_EQ(time, 7005);
  EXPECT_EQ(decoder->flush().pixelBuffer, nullptr);
}

TEST(H264DecoderTest, HandsOnWhatFfmpegDecodes) {
  const auto units = makeStream({.pictures = 6});
  EXPECT_EQ(test::md5Of(decoded(units).pictures), test::md5ByFfmpeg(units));
}

// libx264 writes limited range, which is the default, only beside something that is not.
const StreamPlan kTold{.pictures = 1, .options = {{"qp", "0"}}, .range = 1, .primaries = 1};
const StreamPlan kUntold{.pictures = 1, .options = {{"qp", "0"}}, .range = 0};
const StreamPlan kFull{.pictures = 1, .options = {{"qp", "0"}}, .range = 2};

TEST(H264DecoderTest, StretchesAStreamOfLimitedRangeAlsoWhereItDoesNotTell) {
  ASSERT_TRUE(parseH264Sequence(test::firstOf(makeStream(kTold), 7))->colour.primaries == 1);
  ASSERT_EQ(parseH264Sequence(test::firstOf(makeStream(kUntold), 7))->colour, H264Colour());
  // Stripes begin at 40, which is 24 * 255 / 219 = 27.9, and at 100 in Cb: 128 - 28 * 255 / 224 = 96.1.
  for (const StreamPlan& plan : {kTold, kUntold}) {
    const DecodedStream limited = decoded(makeStream(plan));
    ASSERT_EQ(limited.pictures.size(), 1u);
    EXPECT_EQ(limited.pictures[0].pixelBuffer->luma().data[0], 28);
    EXPECT_EQ(limited.pictures[0].pixelBuffer->chroma().data[0], 96);
  }
  const DecodedStream full = decoded(makeStream(kFull));
  ASSERT_EQ(full.pictures.size(), 1u);
  EXPECT_EQ(full.pictures[0].pixelBuffer->luma().data[0], 40);
  EXPECT_EQ(full.pictures[0].pixelBuffer->chroma().data[0], 100);
}

TEST(H264DecoderTest, GivesEachPictureTheColoursOfItsStream) {
  struct Row {
    int range, primaries, transfer, matrix;
    PictureColour expected;
  };
  const Row rows[] = {{0, 2, 2, 2, {ColourMatrix::bt601, 2, 2}},   {1, 6, 6, 6, {ColourMatrix::bt601, 6, 6}},
                      {2, 6, 6, 6, {ColourMatrix::bt601, 6, 6}},   {1, 5, 6, 5, {ColourMatrix::bt601, 5, 6}},
                      {1, 1, 1, 1, {ColourMatrix::bt709, 1, 1}},   {2, 1, 13, 1, {ColourMatrix::bt709, 1, 13}},
                      {2, 4, 4, 4, {ColourMatrix::fcc, 4, 4}},     {2, 7, 7, 7, {ColourMatrix::smpte240, 7, 7}},
                      {2, 9, 14, 9, {ColourMatrix::bt2020, 9, 14}}};
  for (const Row& row : rows) {
    const auto units = makeStream({.pictures = 1,
                                   .range = row.range,
                                   .primaries = row.primaries,
                                   .transfer = row.transfer,
                                   .matrix = row.matrix});
    for (const int threads : {1, 2}) {
      const DecodedStream stream = decoded(units, threads);
      ASSERT_EQ(stream.pictures.size(), 1u);
      EXPECT_EQ(stream.pictures[0].pixelBuffer->colour(), row.expected) << row.range << " " << row.matrix;
    }
  }
}

TEST(H264DecoderTest, GivesAPictureOfSeveralSlicesOnceAndWhole) {
  const auto units = makeStream(kThreeSlices);
  ASSERT_EQ(test::slicesOf(units).size(), 12u);
  const DecodedStream stream = decoded(units);
  EXPECT_EQ(test::md5Of(stream.pictures), test::md5ByFfmpeg(units));
  EXPECT_THAT(timestampsOf(stream), ElementsAre(0, 3000, 6000, 9000));
  EXPECT_THAT(stream.unitOfPicture, ElementsAre(3, 6, 9, 12));  // one unit later; the last by flush
}

std::vector<DecodeStatus> statusesOf(VideoDecoder& decoder, const std::vector<Unit>& slices) {
  std::vector<DecodeStatus> statuses;
  for (const Unit& slice : slices) statuses.push_back(decoder.decode(lengthPrefixed(slice), 0).status);
  return statuses;
}

// 64 columns and 640 rows are 40 rows of macroblocks: as many slices, none of which is a failure.
TEST(H264DecoderTest, KeepsTheUnitsOfAPictureUntilItIsWhole) {
  const auto units = makeStream({.width = 64, .height = 640, .pictures = 6, .options = {{"x264-params", "slices=40"}}});
  const auto slices = test::slicesOf(units);
  ASSERT_EQ(slices.size(), 240u);
  for (const int threads : {1, 4}) {
    const auto decoder = decoderFor(units, threads);
    const auto statuses = statusesOf(*decoder, slices);
    EXPECT_EQ(std::ranges::count(statuses, DecodeStatus::noPicture), 0) << threads;
    EXPECT_EQ(std::ranges::count(statuses, DecodeStatus::picture), 6 - threads) << threads;
  }
}

TEST(H264DecoderTest, KeepsNoMoreUnitsOfAPictureThanItHasMacroblocks) {
  const auto units = makeStream(kThreeSlices);  // 4 by 3 macroblocks
  const auto slices = test::slicesOf(units);
  const auto decoder = decoderFor(units);
  std::vector<Unit> endless(40, slices[1]);
  endless[0] = slices[0];
  const auto statuses = statusesOf(*decoder, endless);
  EXPECT_EQ(std::ranges::count(statuses, DecodeStatus::kept), 12);
  EXPECT_EQ(statuses[11], DecodeStatus::kept);
  EXPECT_EQ(std::ranges::count(statuses, DecodeStatus::noPicture), 28);
}

// A picture that is lost shows when the next one begins, or when it should have come out.
TEST(H264DecoderTest, TellsEveryBrokenPictureOnce) {
  const auto units = makeStream({.pictures = 40});
  auto slices = test::slicesOf(units);
  for (std::size_t i = 1; i < slices.size(); ++i) slices[i].resize(8);
  for (const int threads : {1, 3}) {
    const auto decoder = decoderFor(units, threads);
    const auto statuses = statusesOf(*decoder, slices);
    EXPECT_GE(std::ranges::count(statuses, DecodeStatus::noPicture), 40 - 1 - threads) << threads;
  }
}

TEST(H264DecoderTest, GivesReorderedPicturesInTheOrderOfDisplayWithTimesThatRise) {
  // Decoded I0 P3 b1 b2 P6 b4 b5 P7, shown I0 b1 b2 P3 b4 b5 P6 P7.
  for (const int threads : {1, 2}) {
    const auto units = makeStream(kReordered);
    ASSERT_EQ(test::slicesOf(units).size(), 8u);
    const DecodedStream stream = decoded(units, threads);
    EXPECT_THAT(timestampsOf(stream), ElementsAre(0, 1000, 2000, 3000, 4000, 5000, 6000, 7000));
    EXPECT_EQ(test::md5Of(stream.pictures), test::md5ByFfmpeg(units));
  }
}

TEST(H264DecoderTest, DecodesTheSameWithSeveralThreads) {
  for (const StreamPlan& plan : {StreamPlan{.pictures = 9}, kThreeSlices}) {
    const auto units = makeStream(plan);
    const DecodedStream several = decoded(units, 3);
    EXPECT_EQ(test::md5Of(several.pictures), test::md5ByFfmpeg(units));
    EXPECT_EQ(timestampsOf(several), timestampsOf(decoded(units)));
  }
}

TEST(H264DecoderTest, TakesStartCodesThatACutterLeftInsideOfAUnit) {
  const auto units = makeStream(kThreeSlices);
  const auto slices = test::slicesOf(units);
  const auto decoder = decoderFor(units);
  for (std::size_t picture = 0; picture < 4; ++picture) {
    Unit whole = slices[3 * picture];
    for (const std::size_t next : {1u, 2u}) {
      whole.insert(whole.end(), {0, 0, 1});
      whole.insert(whole.end(), slices[3 * picture + next].begin(), slices[3 * picture + next].end());
    }
    EXPECT_EQ(decoder->decode(lengthPrefixed(whole), 0).status, DecodeStatus::picture) << picture;
  }
}

TEST(H264DecoderTest, FollowsAStreamThatChangesItsSize) {
  const auto small = makeStream({.width = 64, .height = 48, .pictures = 2});
  const auto large = makeStream({.width = 128, .height = 96, .pictures = 2});
  const auto decoder = decoderFor(small);
  for (const Unit& slice : test::slicesOf(small)) decoder->decode(lengthPrefixed(slice), 1);
  for (const int type : {7, 8}) decoder->decode(lengthPrefixed(test::firstOf(large, type)), 2);
  const DecodeResult result = decoder->decode(lengthPrefixed(test::firstOf(large, 5)), 3);
  ASSERT_EQ(result.status, DecodeStatus::picture);
  EXPECT_EQ(result.picture.pixelBuffer->width(), 128);
  EXPECT_EQ(result.picture.pixelBuffer->height(), 96);
}

TEST(H264DecoderTest, CropsToTheSizeThatIsMeant) {
  const DecodedStream stream = decoded(makeStream({.width = 50, .height = 38, .pictures = 2}));
  ASSERT_EQ(stream.pictures.size(), 2u);
  EXPECT_EQ(stream.pictures[1].pixelBuffer->width(), 50);
  EXPECT_EQ(stream.pictures[1].pixelBuffer->height(), 38);
}

TEST(H264DecoderTest, LeavesPicturesAliveWhenItGoes) {
  const auto units = makeStream({.pictures = 1});
  DecodedStream stream = decoded(units);  // its decoder has gone
  ASSERT_EQ(stream.pictures.size(), 1u);
  EXPECT_EQ(test::md5Of(stream.pictures), test::md5ByFfmpeg(units));
}

TEST(H264DecoderTest, RefusesUnitsWhoseLengthDoesNotFit) {
  const auto units = makeStream({.pictures = 1});
  const auto decoder = decoderFor(units);
  Unit unit = lengthPrefixed(test::firstOf(units, 5));
  unit[3] = static_cast<std::uint8_t>(unit[3] + 1);
  EXPECT_EQ(decoder->decode(unit, 0).status, DecodeStatus::noPicture);
  unit[3] = static_cast<std::uint8_t>(unit[3] - 2);
  EXPECT_EQ(decoder->decode(unit, 0).status, DecodeStatus::noPicture);
  for (std::size_t size = 0; size < 5; ++size)
    EXPECT_EQ(decoder->decode(Unit(size, 0), 0).status, DecodeStatus::noPicture) << size;
  unit[3] = static_cast<std::uint8_t>(unit[3] + 1);
  EXPECT_EQ(decoder->decode(unit, 0).status, DecodeStatus::picture);
}

TEST(H264DecoderTest, DecodesNothingAfterItsEnd) {
  const auto units = makeStream({.pictures = 1});
  const auto decoder = decoderFor(units);
  decoder->flush();
  EXPECT_EQ(decoder->decode(lengthPrefixed(test::firstOf(units, 5)), 0).status, DecodeStatus::sessionInvalid);
  EXPECT_EQ(decoder->flush().pixelBuffer, nullptr);
}

TEST(H264DecoderTest, RefusesParameterSetsThatMakeNoSense) {
  const auto units = makeStream({.pictures = 1});
  const Unit sps = test::firstOf(units, 7), pps = test::firstOf(units, 8);
  LibavVideoDecoders decoders;
  const std::pair<Unit, Unit> kBad[] = {{{}, pps},
                                        {sps, {}},
                                        {pps, sps},
                                        {{0x67}, pps},
                                        {{sps.begin(), sps.begin() + 6}, pps},
                                        {sps, Unit{0x68}},
                                        {sps, Unit(70000, 0x68)}};
  for (const auto& [badSps, badPps] : kBad) {
    const DecoderCreation creation = decoders.create(badSps, badPps);
    EXPECT_EQ(creation.decoder, nullptr);
    EXPECT_EQ(creation.failedAt, DecoderCreationStage::description);
    EXPECT_NE(creation.status, 0);
  }
}

TEST(H264DecoderTest, RefusesFormatsThatItCannotShow) {
  LibavVideoDecoders decoders;
  for (const char* format : {"yuv422p", "yuv444p", "yuv420p10le"}) {
    const auto units = makeStream({.pictures = 1, .pixelFormat = format});
    ASSERT_FALSE(units.empty()) << format;
    const DecoderCreation creation = decoders.create(test::firstOf(units, 7), test::firstOf(units, 8));
    EXPECT_EQ(creation.decoder, nullptr) << format;
    EXPECT_EQ(creation.failedAt, DecoderCreationStage::session) << format;
    EXPECT_NE(creation.status, 0) << format;
  }
}

TEST(H264DecoderTest, ShowsNoPictureOfAFormatThatComesLater) {
  const auto units = makeStream({.pictures = 1});
  const auto other = makeStream({.pictures = 1, .pixelFormat = "yuv422p"});
  const auto decoder = decoderFor(units);
  for (const int type : {7, 8, 5})
    EXPECT_NE(decoder->decode(lengthPrefixed(test::firstOf(other, type)), 0).status, DecodeStatus::picture);
}

TEST(H264DecoderTest, RefusesPicturesThatWouldFillTheMemory) {
  // Baseline, level 5.2, 1024 columns and rows of macroblocks (000000000010000000000), which is 268 million pixels:
  // 1010 0110 1000 0000 0000 0100 0000 0000 0000 0000 0010 0000 0000 0100 01
  const Unit huge{0x67, 0x42, 0x00, 0x34, 0xA6, 0x80, 0x04, 0x00, 0x00, 0x20, 0x04, 0x40};
  LibavVideoDecoders decoders;
  const DecoderCreation creation = decoders.create(huge, test::firstOf(makeStream({.pictures = 1}), 8));
  EXPECT_EQ(creation.decoder, nullptr);
  EXPECT_EQ(creation.failedAt, DecoderCreationStage::session);
}

TEST(H264DecoderTest, ComesBackWithTheNextKeyPictureAfterALostOne) {
  const auto units = makeStream({.pictures = 9, .options = {{"g", "3"}}});
  const auto slices = test::slicesOf(units);
  const auto decoder = decoderFor(units);
  std::vector<std::size_t> shown;
  for (std::size_t i = 0; i < slices.size(); ++i) {
    Unit slice = slices[i];
    if (i == 4) slice.resize(slice.size() / 2);
    if (decoder->decode(lengthPrefixed(slice), 0).status == DecodeStatus::picture) shown.push_back(i);
  }
  EXPECT_THAT(shown, testing::Contains(6));  // the next key picture, without any delay
  EXPECT_THAT(shown, testing::Contains(7));
  EXPECT_THAT(shown, testing::Contains(8));
}

TEST(H264DecoderTest, TakesAKeyPictureWhileItWaitsForTheRestOfAnother) {
  const auto units = makeStream({.pictures = 6, .options = {{"g", "2"}, {"x264-params", "slices=3"}}});
  const auto slices = test::slicesOf(units);
  const auto single = makeStream({.pictures = 1});
  const auto decoder = decoderFor(units);
  // The parameter sets agree; the first key picture has one slice, so that units are decoded one by one.
  ASSERT_EQ(decoder->decode(lengthPrefixed(test::firstOf(single, 5)), 0).status, DecodeStatus::picture);
  EXPECT_EQ(decoder->decode(lengthPrefixed(slices[0]), 1).status, DecodeStatus::kept);
  EXPECT_EQ(decoder->decode(lengthPrefixed(slices[6]), 2).status, DecodeStatus::noPicture);  // the first one's rest
  EXPECT_EQ(decoder->decode(lengthPrefixed(slices[7]), 2).status, DecodeStatus::kept);
  const DecodeResult whole = decoder->decode(lengthPrefixed(slices[8]), 2);
  ASSERT_EQ(whole.status, DecodeStatus::picture);
  EXPECT_EQ(whole.picture.timestamp, 2);
}

class H264DecoderDamageTest : public testing::TestWithParam<unsigned> {
 protected:
  int threads() const { return 1 + static_cast<int>(GetParam() % 2); }
};

// Flips up to seven bits, and cuts every fourth unit.
Unit damaged(Unit unit, std::mt19937& random) {
  for (unsigned flips = random() % 8; flips > 0; --flips)
    unit[random() % unit.size()] ^= static_cast<std::uint8_t>(1u << random() % 8);
  if (random() % 4 == 0) unit.resize(1 + random() % unit.size());
  return unit;
}

TEST_P(H264DecoderDamageTest, DecodesSoundSlicesAfterBrokenOnes) {
  std::mt19937 random(GetParam());
  for (const StreamPlan& plan : {StreamPlan{.pictures = 12, .options = {{"g", "4"}}}, kThreeSlices, kReordered}) {
    const auto units = makeStream(plan);
    const auto decoder = decoderFor(units, threads());
    ASSERT_NE(decoder, nullptr);
    for (const Unit& slice : test::slicesOf(units)) decoder->decode(lengthPrefixed(damaged(slice, random)), 0);
    // Several threads may need a key picture to come to terms again.
    for (int warmUp = threads(); warmUp > 1; --warmUp)
      for (const Unit& slice : test::slicesOf(units)) decoder->decode(lengthPrefixed(slice), 0);
    int shown = 0;
    for (const Unit& slice : test::slicesOf(units))
      if (decoder->decode(lengthPrefixed(slice), 1).picture.timestamp == 1) ++shown;
    for (auto rest = decoder->flush(); rest.pixelBuffer; rest = decoder->flush()) shown += rest.timestamp == 1;
    EXPECT_EQ(shown, plan.pictures);
  }
}

TEST_P(H264DecoderDamageTest, SurvivesWhateverComes) {
  std::mt19937 random(GetParam());
  const auto units = makeStream({.pictures = 6, .options = {{"g", "3"}}});
  const auto decoder = decoderFor(units, threads());
  std::size_t shown = 0;
  for (int round = 0; round < 20; ++round) {
    for (const Unit& unit : units)
      shown += decoder->decode(lengthPrefixed(damaged(unit, random)), 0).status == DecodeStatus::picture ? 1u : 0u;
  }
  EXPECT_LE(shown, 120u);
  while (decoder->flush().pixelBuffer) ++shown;
  EXPECT_EQ(decoder->decode(lengthPrefixed(units[0]), 0).status, DecodeStatus::sessionInvalid);
}

INSTANTIATE_TEST_SUITE_P(Seeds, H264DecoderDamageTest, testing::Range(1u, 13u));

TEST(H264DecoderTest, SurvivesDamagedParameterSets) {
  std::mt19937 random(5);
  const auto units = makeStream({.pictures = 2});
  LibavVideoDecoders decoders;
  int made = 0;
  for (int round = 0; round < 300; ++round) {
    const auto creation =
        decoders.create(damaged(test::firstOf(units, 7), random), damaged(test::firstOf(units, 8), random));
    if (!creation.decoder) continue;
    ++made;
    for (const Unit& slice : test::slicesOf(units)) creation.decoder->decode(lengthPrefixed(slice), 0);
  }
  EXPECT_GT(made, 10);
  EXPECT_LT(made, 300);
}

}  // namespace
}  // namespace zel::platform

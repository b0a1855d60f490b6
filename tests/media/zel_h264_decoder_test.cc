#include "media/zel_h264_decoder.h"

#include <gtest/gtest.h>

#include "platform/simulated/scripted_video_decoder.h"
#include "tests/media/nal_bytes.h"

namespace zel::test {
namespace {

using platform::DecodedPicture;
using platform::DecoderCreationStage;
using platform::DecodeStatus;

const Bytes kKey = prefixed({0x65, 1});
const Bytes kOther = prefixed({0x41, 2});

class ZELH264DecoderTest : public testing::Test {
 protected:
  void SetUp() override { create(); }
  void create() { decoder = ZELH264Decoder::initWidthSps(decoders, bytes({0x67, 1}), bytes({0x68, 2})); }
  bool gives(const Bytes& unit) { return decoder->createPixelBufferUseDecodedData(unit, 0).pixelBuffer != nullptr; }
  void fail(int times) {
    decoders.script(DecodeStatus::noPicture, static_cast<std::size_t>(times));
    for (int i = 0; i < times; ++i) EXPECT_FALSE(gives(kKey));
  }

  platform::ScriptedVideoDecoders decoders;
  std::unique_ptr<ZELH264Decoder> decoder;
};

TEST_F(ZELH264DecoderTest, MakesItsSessionOfBothParameterSets) {
  EXPECT_EQ(decoders.created(), 1u);
  EXPECT_EQ(decoders.lastSps(), bytes({0x67, 1}));
  EXPECT_EQ(decoders.lastPps(), bytes({0x68, 2}));
}

TEST_F(ZELH264DecoderTest, RefusesUnitsBeforeAKeyUnitWithoutCountingThem) {
  EXPECT_FALSE(gives(kOther));
  EXPECT_FALSE(gives(prefixed({0x67, 1})));
  EXPECT_EQ(decoder->decodeContinuousError(), 0);
  EXPECT_TRUE(decoders.units().empty());
  EXPECT_TRUE(gives(kKey));
  EXPECT_TRUE(gives(kOther));
  EXPECT_EQ(decoders.units(), (std::vector<Bytes>{kKey, kOther}));
}

TEST_F(ZELH264DecoderTest, IgnoresUnitsBelowFourBytes) {
  EXPECT_TRUE(gives(kKey));
  EXPECT_FALSE(gives(bytes({0, 0, 1})));
  EXPECT_EQ(decoder->decodeContinuousError(), 0);
  EXPECT_EQ(decoders.units().size(), 1u);
}

TEST_F(ZELH264DecoderTest, DecodesUnitsOfFourBytes) {
  EXPECT_TRUE(gives(kKey));
  EXPECT_TRUE(gives(bytes({0, 0, 0, 0})));
  EXPECT_EQ(decoders.units().size(), 2u);
}

TEST_F(ZELH264DecoderTest, ReadsNoHeaderOfAUnitThatHasNone) {
  EXPECT_FALSE(gives(bytes({0, 0, 0, 0})));
  EXPECT_TRUE(decoder->isWaitIFrame());
}

TEST_F(ZELH264DecoderTest, HandsBackThePictureAndItsTime) {
  decoders.setPictureSize(6, 4);
  const DecodedPicture picture = decoder->createPixelBufferUseDecodedData(kKey, -7);
  EXPECT_EQ(picture.timestamp, -7);
  EXPECT_EQ(picture.pixelBuffer->width(), 6);
  EXPECT_EQ(picture.pixelBuffer->height(), 4);
  EXPECT_EQ(picture.pixelBuffer->luma().data[0], 1);
}

// Remembers how many sessions there are whenever one is made.
struct WatchedDecoders final : platform::VideoDecoders {
  platform::DecoderCreation create(platform::VideoDecoder::Bytes sps, platform::VideoDecoder::Bytes pps) override {
    liveBefore.push_back(scripted.live());
    return scripted.create(sps, pps);
  }
  platform::ScriptedVideoDecoders scripted;
  std::vector<std::size_t> liveBefore;
};

TEST(ZELH264DecoderSessionTest, GoesBeforeTheNextOneIsMade) {
  WatchedDecoders decoders;
  const auto decoder = ZELH264Decoder::initWidthSps(decoders, bytes({0x67, 1}), bytes({0x68, 2}));
  decoders.scripted.script(DecodeStatus::sessionInvalid);
  decoder->createPixelBufferUseDecodedData(kKey, 0);
  EXPECT_EQ(decoders.liveBefore, (std::vector<std::size_t>{0, 0}));
}

TEST_F(ZELH264DecoderTest, RecreatesTheSessionWithTheThirtyFirstFailure) {
  EXPECT_TRUE(gives(kKey));
  fail(30);
  EXPECT_EQ(decoder->decodeContinuousError(), 30);
  EXPECT_EQ(decoders.created(), 1u);
  EXPECT_FALSE(decoder->isWaitIFrame());
  fail(1);
  EXPECT_EQ(decoders.created(), 2u);
  EXPECT_EQ(decoders.live(), 1u);
  EXPECT_TRUE(decoder->isWaitIFrame());
}

TEST_F(ZELH264DecoderTest, RecreatesTheSessionWithEveryFurtherFailure) {
  fail(31);
  EXPECT_FALSE(gives(kOther));  // refused, and so no failure
  EXPECT_EQ(decoders.created(), 2u);
  fail(2);
  EXPECT_EQ(decoders.created(), 4u);
  EXPECT_EQ(decoder->decodeContinuousError(), 33);
}

TEST_F(ZELH264DecoderTest, ForgetsTheFailuresWithOnePicture) {
  fail(30);
  EXPECT_TRUE(gives(kKey));
  EXPECT_EQ(decoder->decodeContinuousError(), 0);
  fail(30);
  EXPECT_EQ(decoders.created(), 1u);
}

TEST_F(ZELH264DecoderTest, CountsAUnitOfAnUnfinishedPictureNeitherUpNorDown) {
  EXPECT_TRUE(gives(kKey));
  fail(29);
  decoders.script(DecodeStatus::kept, 100);
  for (int i = 0; i < 100; ++i) EXPECT_FALSE(gives(kOther));
  EXPECT_EQ(decoder->decodeContinuousError(), 29);
  EXPECT_EQ(decoders.created(), 1u);
  fail(2);
  EXPECT_EQ(decoders.created(), 2u);
}

TEST_F(ZELH264DecoderTest, RecreatesAnInvalidSessionAndWaitsForAKeyUnit) {
  EXPECT_TRUE(gives(kKey));
  decoders.script(DecodeStatus::sessionInvalid);
  EXPECT_FALSE(gives(kOther));
  EXPECT_EQ(decoders.created(), 2u);
  EXPECT_EQ(decoder->decodeContinuousError(), 1);
  EXPECT_FALSE(gives(kOther));
  EXPECT_TRUE(gives(kKey));
}

TEST_F(ZELH264DecoderTest, LosesOneUnitForAMissingSessionAndDoesNotWait) {
  EXPECT_TRUE(gives(kKey));
  decoder->releaseDecompressionSession();
  decoder->releaseDecompressionSession();
  EXPECT_EQ(decoders.live(), 0u);
  EXPECT_FALSE(gives(kOther));
  EXPECT_EQ(decoder->decodeContinuousError(), 0);
  EXPECT_TRUE(gives(kOther));
}

TEST_F(ZELH264DecoderTest, TriesAgainWithEveryUnitWhereNoSessionCanBeMade) {
  decoder->releaseDecompressionSession();
  decoders.failCreations(2, DecoderCreationStage::session, -1);
  testing::internal::CaptureStderr();
  EXPECT_FALSE(gives(kKey));
  EXPECT_FALSE(gives(kKey));
  EXPECT_FALSE(gives(kKey));
  EXPECT_TRUE(gives(kKey));
  EXPECT_EQ(decoders.failed(), 2u);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "create session err:-1\ncreate session err:-1\n");
}

TEST_F(ZELH264DecoderTest, IsNotMadeWithoutASessionAndSaysWhy) {
  decoders.failCreations(1, DecoderCreationStage::description, -12712);
  decoders.failCreations(1, DecoderCreationStage::session, -12906);
  decoders.failCreations(1, DecoderCreationStage::session, 0);
  testing::internal::CaptureStderr();
  for (int i = 0; i < 3; ++i) {
    create();
    EXPECT_EQ(decoder, nullptr);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "create description err:-12712\ncreate session err:-12906\nerr decode session null\n");
}

TEST_F(ZELH264DecoderTest, KeepsCopiesOfTheParameterSets) {
  Bytes sps = bytes({0x67, 1}), pps = bytes({0x68, 2});
  decoder = ZELH264Decoder::initWidthSps(decoders, sps, pps);
  sps = pps = bytes({9, 9});
  decoder->releaseDecompressionSession();
  EXPECT_FALSE(gives(kKey));
  EXPECT_EQ(decoders.lastSps(), bytes({0x67, 1}));
  EXPECT_EQ(decoders.lastPps(), bytes({0x68, 2}));
}

TEST_F(ZELH264DecoderTest, GivesHeldBackPicturesAtTheEnd) {
  decoders.holdBack();
  EXPECT_FALSE(gives(kKey));
  EXPECT_EQ(decoder->flush().pixelBuffer->luma().data[0], 1);
  EXPECT_EQ(decoder->flush().pixelBuffer, nullptr);
  decoder->releaseDecompressionSession();
  EXPECT_EQ(decoder->flush().pixelBuffer, nullptr);
}

TEST_F(ZELH264DecoderTest, ReleasesItsSession) {
  decoder.reset();
  EXPECT_EQ(decoders.live(), 0u);
}

}  // namespace
}  // namespace zel::test

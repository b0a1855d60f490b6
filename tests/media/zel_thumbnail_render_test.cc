#include <ZELTarkaSDK/ZELThumbnailRender.h>

#include <gtest/gtest.h>

#include <ZELTarkaSDK/platform/ports.h>

#include "platform/simulated/scripted_media_library.h"
#include "platform/simulated/scripted_video_decoder.h"
#include "platform/simulated/simulated_platform.h"
#include "tests/media/nal_bytes.h"

namespace zel::test {
namespace {

const Bytes kKeySps = unit({0x67, 1, 2});
const Bytes kKeyPps = unit({0x68, 3});
const Bytes kKeyIdr = unit({0x65, 4, 4, 4, 4});

class ZELThumbnailRenderTest : public testing::Test {
 protected:
  platform::Ports ports(platform::VideoDecoders* some, platform::MediaLibrary* other) {
    platform::Ports result = host.ports();
    result.videoDecoders = some;
    result.mediaLibrary = other;
    return result;
  }
  platform::PixelBufferRef decode(const Bytes& data) {
    return render->copyPixelBufferWithDecodeH264Data(ZELData(data));
  }
  platform::PixelBufferRef flatten(const Bytes& data, const std::optional<std::string>& offset) {
    return render->renderWithh264Data(ZELData(data), offset);
  }

  platform::SimulatedPlatform host;
  platform::ScriptedVideoDecoders decoders;
  platform::ScriptedMediaLibrary library;
  std::unique_ptr<ZELThumbnailRender> render =
      ZELThumbnailRender::initWithRenderWidth(ports(&decoders, &library), 8, 4);
};

TEST_F(ZELThumbnailRenderTest, DecodesAKeyFrameWithItsParameterSets) {
  ASSERT_NE(decode(join(kKeySps, kKeyPps, kKeyIdr)), nullptr);
  EXPECT_EQ(decoders.lastSps(), bytes({0x67, 1, 2}));
  EXPECT_EQ(decoders.lastPps(), bytes({0x68, 3}));
  EXPECT_EQ(decoders.units(), std::vector<Bytes>{prefixed({0x65, 4, 4, 4, 4})});
  EXPECT_EQ(decoders.live(), 0u);
}

TEST_F(ZELThumbnailRenderTest, GivesNothingWithoutAnSps) {
  EXPECT_EQ(decode(join(kKeyPps, kKeyIdr)), nullptr);
  EXPECT_EQ(decode(join(kKeyPps, kKeySps, kKeyIdr)), nullptr);  // the PPS behind which both are known makes the decoder
  EXPECT_EQ(decoders.created(), 0u);
}

TEST_F(ZELThumbnailRenderTest, GivesNothingForOtherSlicesAlone) {
  EXPECT_EQ(decode(join(kKeySps, kKeyPps, unit({0x41, 1, 1, 1, 1}))), nullptr);
  EXPECT_TRUE(decoders.units().empty());
}

TEST_F(ZELThumbnailRenderTest, IgnoresParameterSetsWithInvalidHeaders) {
  EXPECT_EQ(decode(join(kKeySps, unit({0x08, 3}), kKeyIdr)), nullptr);
  EXPECT_EQ(decode(join(unit({0xE7, 1}), kKeyPps, kKeyIdr)), nullptr);
  EXPECT_TRUE(ZELThumbnailRender::isInValid(0x08));
  EXPECT_TRUE(ZELThumbnailRender::isInValid(0xE7));
  EXPECT_FALSE(ZELThumbnailRender::isInValid(0x28));
}

TEST_F(ZELThumbnailRenderTest, MakesTheDecoderOnlyWithAValidPps) {
  EXPECT_EQ(decode(join(kKeyPps, kKeySps, unit({0x08, 9}), kKeyIdr)), nullptr);
  EXPECT_NE(decode(join(kKeyPps, kKeySps, unit({0x68, 9}), kKeyIdr)), nullptr);
  EXPECT_EQ(decoders.lastPps(), bytes({0x68, 3}));
}

TEST_F(ZELThumbnailRenderTest, IgnoresSixBytes) {
  EXPECT_EQ(decode(unit({0x65, 1})), nullptr);
  EXPECT_EQ(decode({}), nullptr);
}

// The second start code of eight bytes stands in the last four, and is not seen; neither is that of the key frame.
TEST_F(ZELThumbnailRenderTest, TakesSevenOrEightBytesForOneUnit) {
  EXPECT_EQ(decode(kKeySps), nullptr);
  EXPECT_EQ(decode(join(unit({}), unit({}))), nullptr);
  EXPECT_NE(decode(join(kKeySps, kKeyPps, unit({0x65}))), nullptr);
  EXPECT_EQ(decode(join(kKeySps, kKeyPps, unit({}))), nullptr);
}

TEST_F(ZELThumbnailRenderTest, NeedsNoStartCodeBeforeTheFirstUnit) {
  EXPECT_NE(decode(join(bytes({9, 9, 9, 9, 0x67, 1}), kKeyPps, kKeyIdr)), nullptr);
  EXPECT_EQ(decoders.lastSps(), bytes({0x67, 1}));
}

// The first unit is not looked into before its fifth byte: a start code within it hides the set.
TEST_F(ZELThumbnailRenderTest, LooksForStartCodesFromTheFifthByteOn) {
  for (const std::size_t before : {1u, 2u, 3u})
    EXPECT_EQ(decode(join(repeated(before, 9), kKeySps, kKeyPps, kKeyIdr)), nullptr) << before;
  EXPECT_NE(decode(join(repeated(4, 9), kKeySps, kKeyPps, kKeyIdr)), nullptr);
}

TEST_F(ZELThumbnailRenderTest, GivesTheLastOfSeveralKeyFrames) {
  EXPECT_EQ(decode(join(kKeySps, kKeyPps, kKeyIdr, kKeyIdr))->luma().data[0], 2);
  decoders.script(platform::DecodeStatus::picture);
  decoders.script(platform::DecodeStatus::noPicture);
  EXPECT_EQ(decode(join(kKeySps, kKeyPps, kKeyIdr, kKeyIdr)), nullptr);
}

TEST_F(ZELThumbnailRenderTest, FetchesAPictureThatTheDecoderHoldsBack) {
  decoders.holdBack();
  EXPECT_EQ(decode(join(kKeySps, kKeyPps, kKeyIdr))->luma().data[0], 1);
  EXPECT_EQ(decode(join(kKeySps, kKeyPps, kKeyIdr, kKeyIdr))->luma().data[0], 3);
}

TEST_F(ZELThumbnailRenderTest, DecodesFragmentsOfDifferentSizesInARow) {
  decoders.setPictureSize(6, 4);
  EXPECT_EQ(decode(join(kKeySps, kKeyPps, kKeyIdr))->width(), 6);
  decoders.setPictureSize(10, 8);
  EXPECT_EQ(decode(join(unit({0x67, 9, 9}), kKeyPps, kKeyIdr))->width(), 10);
  EXPECT_EQ(decoders.lastSps(), bytes({0x67, 9, 9}));
}

TEST_F(ZELThumbnailRenderTest, KeepsNothingOfTheCallBefore) {
  EXPECT_NE(decode(join(kKeySps, kKeyPps, kKeyIdr)), nullptr);
  EXPECT_EQ(decode(kKeyIdr), nullptr);
}

TEST_F(ZELThumbnailRenderTest, RendersTheFlatImage) {
  const auto image = flatten(join(kKeySps, kKeyPps, kKeyIdr), "the offset");
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->width(), 8);
  EXPECT_EQ(image->height(), 4);
  EXPECT_EQ(image->luma().data[0], 2);
  EXPECT_EQ(library.lastOffset, "the offset");
  render->setWidth(2);
  EXPECT_EQ(flatten(join(kKeySps, kKeyPps, kKeyIdr), "")->width(), 2);
}

TEST_F(ZELThumbnailRenderTest, RendersNothingWithoutOffsetPictureOrRenderer) {
  EXPECT_EQ(flatten(join(kKeySps, kKeyPps, kKeyIdr), std::nullopt), nullptr);
  EXPECT_TRUE(decoders.units().empty());
  EXPECT_EQ(flatten(kKeyIdr, "the offset"), nullptr);
  EXPECT_EQ(library.created, 0);
  library.renders = false;
  EXPECT_EQ(flatten(join(kKeySps, kKeyPps, kKeyIdr), "the offset"), nullptr);
  render = ZELThumbnailRender::initWithRenderWidth(ports(&decoders, nullptr), 8, 4);
  EXPECT_EQ(flatten(join(kKeySps, kKeyPps, kKeyIdr), "the offset"), nullptr);
  render = ZELThumbnailRender::initWithRenderWidth(ports(nullptr, &library), 8, 4);
  EXPECT_EQ(decode(join(kKeySps, kKeyPps, kKeyIdr)), nullptr);
}

}  // namespace
}  // namespace zel::test

// What the ports' values are until an adapter fills them.
#include <gtest/gtest.h>

#include <ZELTarkaSDK/platform/accessory.h>
#include <ZELTarkaSDK/platform/clock.h>
#include <ZELTarkaSDK/platform/media_library.h>
#include <ZELTarkaSDK/platform/pixel_buffer.h>
#include <ZELTarkaSDK/platform/video_decoder.h>
#include <ZELTarkaSDK/platform/video_encoder.h>

namespace zel::platform {
namespace {

TEST(PortValues, APlaneHasNoBytes) {
  const PixelPlane plane;
  EXPECT_EQ(plane.data, nullptr);
  EXPECT_EQ(plane.stride, 0u);
  EXPECT_EQ(plane.rowBytes, 0u);
  EXPECT_EQ(plane.rows, 0u);
}

TEST(PortValues, ASideOfOnePixelHasASampleOfChroma) {
  EXPECT_EQ(chromaSamples(1), 1u);
  EXPECT_EQ(chromaSamples(2), 1u);
  EXPECT_EQ(chromaSamples(3), 2u);
  EXPECT_EQ(chromaSamples(1440), 720u);
}

TEST(PortValues, ADecodersAnswerHoldsNoPicture) {
  const DecodeResult result;
  EXPECT_EQ(result.status, DecodeStatus::noPicture);
  EXPECT_EQ(result.picture.pixelBuffer, nullptr);
  EXPECT_EQ(result.picture.timestamp, 0);
}

TEST(PortValues, ADecodersCreationHoldsNoDecoderAndNoReason) {
  const DecoderCreation creation;
  EXPECT_EQ(creation.decoder, nullptr);
  EXPECT_EQ(creation.failedAt, DecoderCreationStage::session);
  EXPECT_EQ(creation.status, 0);
}

TEST(PortValues, ATimeIsZeroWholeSeconds) {
  EXPECT_EQ(MediaTime{}.value, 0);
  EXPECT_EQ(MediaTime{}.timescale, 1);
}

TEST(PortValues, AnEncodersSettingsAskForNothing) {
  EXPECT_EQ(VideoEncoderSettings{}, (VideoEncoderSettings{0, 0, 0, 0}));
}

TEST(PortValues, ARectangleAndAnImageAreEmpty) {
  EXPECT_EQ(Rectangle{}, (Rectangle{0, 0, 0, 0}));
  EXPECT_EQ(RgbaImage{}, (RgbaImage{0, 0, {}}));
}

TEST(PortValues, AnAccessoryIsNoConnectionYet) { EXPECT_EQ(AccessoryDescription{}.connectionID, 0u); }

// A clock of a host that knows no time zone.
class PlainClock final : public Clock {
 public:
  explicit PlainClock(double time) : time_(time) {}
  double absoluteTime() const override { return time_; }
  void sleepFor(double) override {}

 private:
  const double time_;
};

TEST(PortValues, AClockWithoutATimeZoneIsAtUtc) { EXPECT_EQ(PlainClock(0).localTimeOffset(731'062'800.0), 0); }

TEST(PortValues, AClocksMillisecondsAreCutTowardsZero) {
  EXPECT_EQ(absoluteTimeMilliseconds(PlainClock(1.5625)), 1562);
  EXPECT_EQ(absoluteTimeMilliseconds(PlainClock(-1.5625)), -1562);
}

}  // namespace
}  // namespace zel::platform

#include <ZELTarkaSDK/LinuxMedia.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "platform/simulated/simulated_platform.h"

namespace zel {
namespace {

using platform::MemoryPixelBuffer;
using testing::ElementsAre;
using Bytes = std::vector<std::uint8_t>;

// A lens of 750 pixels in each half of 3040 x 1520.
constexpr const char* kOffset = "2_750_760_760_0_0_0_750_2280_760_180_0_0_3040_1520_7";

class LinuxMediaTest : public testing::Test {
 protected:
  void encodeOnePicture() {
    const auto encoder =
        media->ports().videoEncoders->create({.width = 64, .height = 32, .bitrate = 100'000, .fps = 10});
    ASSERT_TRUE(encoder->open());
    encoder->setSpsPpsCallback(
        [&](const std::uint8_t* s, std::int32_t sSize, const std::uint8_t* p, std::int32_t pSize) {
          sps.assign(s, s + sSize);
          pps.assign(p, p + pSize);
        });
    encoder->setNaluCallback(
        [&](std::uint8_t* data, std::int32_t size, bool, auto) { unit.assign(data, data + size); });
    ASSERT_TRUE(encoder->encodeImage(MemoryPixelBuffer::filled(64, 32, 77, 90, 200), {.value = 0, .timescale = 10}));
  }

  platform::SimulatedPlatform simulated;
  Bytes sps, pps, unit;
  std::vector<std::string> warnings;
  std::optional<LinuxMedia> media{std::in_place, simulated.ports(),
                                  LinuxMedia::Options{[this](const std::string& text) { warnings.push_back(text); }}};
};

TEST_F(LinuxMediaTest, KeepsThePortsThatItWasGiven) {
  const platform::Ports& ports = media->ports();
  EXPECT_EQ(&ports.clock, &simulated.ports().clock);
  EXPECT_EQ(&ports.threads, &simulated.ports().threads);
  EXPECT_EQ(&ports.queues, &simulated.ports().queues);
  EXPECT_EQ(&ports.accessories, &simulated.ports().accessories);
  EXPECT_EQ(&ports.notifications, &simulated.ports().notifications);
}

TEST_F(LinuxMediaTest, DecodesWhatItEncodes) {
  encodeOnePicture();

  const auto creation = media->ports().videoDecoders->create(sps, pps);
  ASSERT_NE(creation.decoder, nullptr);
  const auto result = creation.decoder->decode(unit, 1234);
  ASSERT_EQ(result.status, platform::DecodeStatus::picture);
  EXPECT_EQ(result.picture.timestamp, 1234);
  EXPECT_EQ(result.picture.pixelBuffer->width(), 64);
  EXPECT_NEAR(result.picture.pixelBuffer->luma().data[0], 77, 2);
}

// Several threads give each picture later, the last one at the end.
TEST_F(LinuxMediaTest, DecodesWithSeveralThreadsWhereAsked) {
  const LinuxMedia threaded(simulated.ports(), {.warn = {}, .decoderThreads = 2});
  encodeOnePicture();

  const auto decoder = threaded.ports().videoDecoders->create(sps, pps).decoder;
  ASSERT_NE(decoder, nullptr);
  EXPECT_NE(decoder->decode(unit, 1234).status, platform::DecodeStatus::picture);
  const auto late = decoder->flush();
  ASSERT_NE(late.pixelBuffer, nullptr);
  EXPECT_EQ(late.timestamp, 1234);
}

TEST_F(LinuxMediaTest, TakesAnyNumberOfThreadsForTheNearestOneThereIs) {
  encodeOnePicture();
  for (const int threads : {-7, 0, 17, 1'000'000}) {
    const LinuxMedia other(simulated.ports(), {.warn = {}, .decoderThreads = threads});
    const auto decoder = other.ports().videoDecoders->create(sps, pps).decoder;
    ASSERT_NE(decoder, nullptr) << threads;
    const bool atOnce = decoder->decode(unit, 0).status == platform::DecodeStatus::picture;
    EXPECT_EQ(atOnce, threads < 1) << threads;
    EXPECT_EQ(decoder->flush().pixelBuffer == nullptr, atOnce) << threads;
  }
}

TEST_F(LinuxMediaTest, StitchesAndTellsWhyNot) {
  const auto render = media->ports().mediaLibrary->createFlatOffscreenRender(240, 120);
  ASSERT_NE(render, nullptr);
  render->setOffset(kOffset);
  const auto picture = render->renderVideo(MemoryPixelBuffer::filled(640, 320, 77, 90, 200));
  ASSERT_NE(picture, nullptr);
  EXPECT_EQ(picture->width(), 240);
  EXPECT_EQ(media->ports().mediaLibrary->createFlatOffscreenRender(241, 120), nullptr);
  EXPECT_THAT(warnings, ElementsAre("stitching: a panorama of 241 x 120 cannot be made; its sides must be even, from "
                                    "2 to 16384"));
}

TEST_F(LinuxMediaTest, DecodersOutliveIt) {
  platform::VideoDecoders& decoders = *media->ports().videoDecoders;
  media.reset();
  EXPECT_EQ(decoders.create(Bytes{0x67}, Bytes{0x68}).decoder, nullptr);
}

}  // namespace
}  // namespace zel

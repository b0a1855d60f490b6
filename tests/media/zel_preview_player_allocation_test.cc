// What an hour of preview leaves in memory. A program of its own, because that replaces the global allocator.

#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <gtest/gtest.h>

#include <algorithm>

#include <ZELTarkaSDK/platform/ports.h>

#include "base/wire.h"
#include "link/camera_data_parser.h"
#include "platform/ffmpeg/h264_decoder.h"
#include "platform/simulated/simulated_platform.h"
#include "protocol/frame.h"
#include "tests/link/bytes.h"
#include "tests/link/recording_consumers.h"
#include "tests/live_bytes.h"
#include "tests/platform/ffmpeg/streams/stream_maker.h"

namespace zel::test {
namespace {

constexpr int kPicturesASecond = 30;
constexpr std::int64_t kOrigin = 1'000'000;  // the camera's clock when it begins

class CountingDelegate final : public ZELCameraMediaDataDelegate, public ZELPixelBufferDataProtocol {
 public:
  void onH264Nalu(Bytes, bool keyFrame, std::int64_t) override { keyFrames += keyFrame ? 1 : 0; }
  void onSps(Bytes, Bytes) override { ++sets; }
  void onAACHeader(Bytes) override {}
  void onAACAdts(Bytes, std::int64_t timestamp) override {
    ++sounds;
    lastSound = timestamp;
  }
  void onPixelBuffer(const platform::PixelBufferRef&, std::int64_t timestamp) override {
    ++pictures;
    lastPicture = timestamp;
  }
  int keyFrames = 0, sets = 0, sounds = 0, pictures = 0;
  std::int64_t lastSound = 0, lastPicture = 0;
};

void appendFrame(Bytes& stream, FrameType type, ByteView payload) {
  appendLittleEndian(stream, static_cast<std::uint32_t>(kFrameHeader + payload.size()));
  appendLittleEndian(stream, static_cast<std::uint16_t>(type));
  stream.insert(stream.end(), payload.begin(), payload.end());
}

void appendTime(Bytes& stream, bool sound, std::int64_t time) {
  Bytes payload{static_cast<std::uint8_t>(sound)};
  appendLittleEndian(payload, static_cast<std::uint64_t>(time));
  appendFrame(stream, FrameType::timestamp, payload);
}

// AAC-LC, 48 kHz, stereo, of 107 to 138 bytes.
Bytes sound(std::int64_t number) {
  const int length = 107 + static_cast<int>(number % 32);
  return join(bytes({0xFF, 0xF1, 0x4C, 0x80, length >> 3, (length & 7) << 5 | 0x1F, 0xFC}),
              repeated(static_cast<std::size_t>(length - 7), 0x21));
}

// Ten seconds of small pictures, of which the first of each second is a key picture with its parameter sets.
std::vector<Bytes> makeFilm() {
  std::vector<Bytes> pictures(1);
  for (const Unit& unit : makeStream({.pictures = 300, .options = {{"g", "30"}, {"preset", "ultrafast"}}})) {
    pictures.back() = join(pictures.back(), bytes({0, 0, 0, 1}), unit);
    if (typeOf(unit) == 1 || typeOf(unit) == 5) pictures.emplace_back();
  }
  pictures.pop_back();
  return pictures;
}

class PreviewMemoryTest : public testing::Test {
 protected:
  PreviewMemoryTest() {
    platform::Ports ports = host.ports();
    ports.videoDecoders = &decoders;
    player = ZELPreviewPlayer::create(ports, [] { return 192; });
    player->setMediaDataDelegate(seen);
    player->setPixelBufferDelegate(seen);
    parser.setAccessory(&link);
    parser.setPreviewPlayer(player);
  }

  // What the camera sends in that second: 30 pictures and 46 or 47 frames of sound, each behind its time.
  Bytes second(std::int64_t number) {
    Bytes stream;
    for (std::int64_t n = number * kPicturesASecond; n < (number + 1) * kPicturesASecond; ++n) {
      appendTime(stream, false, kOrigin + n * 1000 / kPicturesASecond);
      appendFrame(stream, FrameType::previewVideo, film[static_cast<std::size_t>(n) % film.size()]);
      for (; sounds < (n + 1) * 25 / 16; ++sounds) {
        appendTime(stream, true, kOrigin + sounds * 64 / 3);
        appendFrame(stream, FrameType::previewAudio, sound(sounds));
      }
    }
    return stream;
  }

  // In reads that cut the frames anywhere.
  void receive(ByteView stream) {
    while (!stream.empty()) {
      const ByteView read = stream.first(std::min<std::size_t>(stream.size(), 2000));
      parser.parserData(read);
      host.runUntilIdle();
      stream = stream.subspan(read.size());
    }
  }

  void receiveMinute(std::int64_t number) {
    for (std::int64_t n = 60 * number; n < 60 * (number + 1); ++n) receive(second(n));
  }

  const std::vector<Bytes> film = makeFilm();
  std::int64_t sounds = 0;
  platform::SimulatedPlatform host;
  platform::LibavVideoDecoders decoders;
  RecordingLink link;
  std::shared_ptr<CountingDelegate> seen = std::make_shared<CountingDelegate>();
  CameraDataParser parser;
  std::shared_ptr<ZELPreviewPlayer> player;
};

TEST_F(PreviewMemoryTest, HoldsAfterAnHourWhatItHeldAfterAMinute) {
  ASSERT_EQ(film.size(), 300u);
  receiveMinute(0);
  const long held = liveBytes();
  long most = 0;
  for (std::int64_t minute = 1; minute < 60; ++minute) {
    receiveMinute(minute);
    most = std::max(most, liveBytes() - held);
  }
  EXPECT_LE(most, 4096);
  // The last picture is held back until a start code comes: each has the time that came with the next one.
  EXPECT_EQ(seen->pictures, 107'999);
  EXPECT_EQ(seen->lastPicture, 4'599'966);
  EXPECT_EQ(seen->sounds, 168'750);
  EXPECT_EQ(seen->lastSound, 4'599'978);
  EXPECT_EQ(seen->keyFrames, 3600);
  EXPECT_EQ(seen->sets, 3600);
}

}  // namespace
}  // namespace zel::test

// Streams of other makers' encoders as their cameras would send them: session, de-multiplexer, cutter, player, decoder.

#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/ffmpeg/h264_decoder.h"
#include "protocol/frame.h"
#include "tests/link/connected_camera.h"
#include "tests/platform/ffmpeg/streams/decoded_stream.h"
#include "tests/platform/ffmpeg/streams/stream_maker.h"
#include "tests/platform/ffmpeg/streams/video_file.h"

namespace zel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

// All that comes out of the player.
class Received final : public ZELCameraMediaDataDelegate, public ZELPixelBufferDataProtocol {
 public:
  struct Slice {
    std::size_t size;
    bool isKey;
    std::int64_t time;
  };

  void onH264Nalu(Bytes nalu, bool keyFrame, std::int64_t timestamp) override {
    slices.push_back({nalu.size(), keyFrame, timestamp});
  }
  void onSps(Bytes sps, Bytes pps) override { sets.push_back({sps.size(), pps.size()}); }
  void onAACHeader(Bytes header) override { headers.emplace_back(header.begin(), header.end()); }
  void onAACAdts(Bytes data, std::int64_t timestamp) override {
    sounds.emplace_back(data.begin(), data.end());
    soundTimes.push_back(timestamp);
  }
  void onPixelBuffer(const platform::PixelBufferRef& picture, std::int64_t timestamp) override {
    pictures.push_back({picture, timestamp});
  }

  std::vector<Slice> slices;
  std::vector<std::pair<std::size_t, std::size_t>> sets;
  std::vector<test::Bytes> headers, sounds;
  std::vector<std::int64_t> soundTimes;
  std::vector<platform::DecodedPicture> pictures;
};

// What stands from each start code of four bytes to the next, start code included: what a camera of the protocol sends
// at once.
std::vector<Bytes> runsBehindLongCodes(const Bytes& stream) {
  const Bytes code = bytes({0, 0, 0, 1});
  std::vector<Bytes> runs;
  for (auto at = std::search(stream.begin(), stream.end(), code.begin(), code.end()); at != stream.end();) {
    const auto end = std::search(at + 4, stream.end(), code.begin(), code.end());
    runs.emplace_back(at, end);
    at = end;
  }
  return runs;
}

class RealPreviewTest : public testing::Test {
 protected:
  RealPreviewTest() {
    decode(decoders);
    connected.camera->current()->setReadLimit(997);
  }

  // A player that decodes with these, in place of the one before.
  void decode(platform::VideoDecoders& with) {
    received = std::make_shared<Received>();
    platform::Ports ports = connected.host.ports();
    ports.videoDecoders = &with;
    player = ZELPreviewPlayer::create(ports, [] { return 192; });
    player->setMediaDataDelegate(received);
    player->setPixelBufferDelegate(received);
    connected.stack->parser().setPreviewPlayer(player);
  }

  void send(FrameType type, ByteView payload) {
    Bytes frame;
    appendLittleEndian(frame, static_cast<std::uint32_t>(kFrameHeader + payload.size()));
    appendLittleEndian(frame, static_cast<std::uint16_t>(type));
    frame.insert(frame.end(), payload.begin(), payload.end());
    connected.camera->current()->send(frame);
    connected.host.runUntilIdle();
  }
  void sendTime(bool sound, std::int64_t time) {
    Bytes payload{static_cast<std::uint8_t>(sound)};
    appendLittleEndian(payload, static_cast<std::uint64_t>(time));
    send(FrameType::timestamp, payload);
  }
  // A frame for each run, and one more, which releases the last.
  void sendVideo(const std::vector<Bytes>& runs) {
    for (const Bytes& run : runs) send(FrameType::previewVideo, run);
    send(FrameType::previewVideo, bytes({0, 0, 0, 1, 0x09, 0}));
  }

  ConnectedCamera connected;
  platform::LibavVideoDecoders decoders;
  std::shared_ptr<Received> received;
  std::shared_ptr<ZELPreviewPlayer> player;
};

// Each slice is a unit of its own: 40 a picture on one thread, and eight times five before the first comes out.
TEST_F(RealPreviewTest, PicturesOfManySlicesCome) {
  for (const auto& [threads, slices] : {std::pair{1, "slices=40"}, std::pair{8, "slices=5"}}) {
    platform::LibavVideoDecoders several({threads});
    decode(several);
    std::vector<Bytes> runs;
    for (const Unit& each :
         makeStream({.width = 64, .height = 640, .pictures = 20, .options = {{"x264-params", slices}}}))
      runs.push_back(join(bytes({0, 0, 0, 1}), each));
    sendVideo(runs);
    EXPECT_EQ(received->pictures.size(), static_cast<std::size_t>(20 - threads)) << slices;
  }
}

// Of 4,202 units 3,900 stand behind three bytes. The decoder finds them inside the unit by itself.
TEST_F(RealPreviewTest, FourteenSlicesBehindOneLongCodeAreOneUnitAndOnePicture) {
  ZEL_REAL_MEDIA(stream, "h264/test_cif_P_CABAC_slice.264");
  const std::vector<Bytes> runs = runsBehindLongCodes(stream);
  ASSERT_EQ(runs.size(), 302u);
  sendVideo(runs);
  EXPECT_THAT(received->sets, ElementsAre(Pair(runs[0].size() - 4, runs[1].size() - 4)));
  ASSERT_EQ(received->slices.size(), 300u);
  for (std::size_t i = 0; i < 300; ++i) {
    EXPECT_EQ(received->slices[i].size, runs[i + 2].size()) << i;
    EXPECT_EQ(received->slices[i].isKey, i == 0) << i;
  }
  EXPECT_EQ(received->pictures.size(), 300u);
  EXPECT_EQ(md5Of(received->pictures), "b858f4aaf7b2d66329457ed5150557b0");
}

// Its key pictures end up inside the picture parameter sets, of which no decoder can be made, and all others inside
// delimiters, which nobody wants.
TEST_F(RealPreviewTest, SlicesBehindShortCodesAloneAreNeverSeen) {
  ZEL_REAL_MEDIA(stream, "h264/kvs-frames-001-060.h264");
  const std::vector<Bytes> runs = runsBehindLongCodes(stream);
  ASSERT_EQ(runs.size(), 64u);  // 60 delimiters, two pairs of parameter sets
  EXPECT_GT(runs[2].size(), 10'000u);
  testing::internal::CaptureStderr();
  sendVideo(runs);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "create description err:-1094995529\ncreate description err:-1094995529\n");
  EXPECT_THAT(received->sets, IsEmpty());
  EXPECT_THAT(received->slices, IsEmpty());
  EXPECT_THAT(received->pictures, IsEmpty());
  EXPECT_EQ(player->statistics().units, 0u);
  EXPECT_EQ(connected.host.liveThreads("preview decode"), 0);
}

// Three sequences of two pictures, 352 columns wide, 640 and 352 again; each has sets of its own, and slices that name
// them. They come in 2, 5 and 3 slices. The decoder has the first sets, so that it can make nothing of the rest.
TEST_F(RealPreviewTest, KeepsTheFirstParameterSetsOfAStreamThatChangesItsSizeWithoutAReset) {
  ZEL_REAL_MEDIA(stream, "h264/Error_I_P.264");
  sendVideo(runsBehindLongCodes(stream));
  EXPECT_THAT(received->sets, ElementsAre(Pair(9, 4), Pair(9, 4), Pair(9, 4)));
  EXPECT_EQ(received->slices.size(), 10u);
  EXPECT_EQ(player->statistics().units, 10u);
  EXPECT_EQ(player->statistics().withoutPicture, 8u);
  ASSERT_EQ(received->pictures.size(), 2u);
  EXPECT_EQ(md5Of(received->pictures), "2d30564259c0eb768977dc50f120c71a");
  EXPECT_EQ(player->imageWidth(), 352);
}

// AAC-LC, 32 kHz, mono: the container's frame behind the header that a camera puts before it.
Bytes adts(const Bytes& frame) {
  const int length = 7 + static_cast<int>(frame.size());
  return join(bytes({0xFF, 0xF1, 0x54, 0x40 | length >> 11, (length >> 3) & 0xFF, (length & 7) << 5 | 0x1F, 0xFC}),
              frame);
}

// 1024 samples at 32 kHz take 32 ms. The time 0 would stand for a stopped clock.
TEST_F(RealPreviewTest, SoundOfACameraComesAsItsFileHoldsIt) {
  ZEL_REAL_MEDIA(file, "dualfisheye/theta1.m4v");
  const RealSound sound = realSound("dualfisheye/theta1.m4v");
  ASSERT_EQ(sound.frames.size(), 59u);
  std::vector<Bytes> expected;
  std::vector<std::int64_t> times;
  for (const RealSound::Frame& frame : sound.frames) {
    times.push_back(5000 + 32 * static_cast<std::int64_t>(times.size()));
    expected.push_back(frame.bytes);
    sendTime(true, 5000 + frame.time);
    send(FrameType::previewAudio, adts(frame.bytes));
  }
  EXPECT_EQ(received->sounds, expected);
  EXPECT_EQ(received->soundTimes, times);
  EXPECT_EQ(sound.configuration, bytes({0x12, 0x88}));
  EXPECT_EQ(received->headers, std::vector<Bytes>(59, sound.configuration));
}

}  // namespace
}  // namespace zel::test

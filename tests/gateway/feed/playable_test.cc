// What other readers of MP4 make of a feed.

#include <gmock/gmock.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

#include <fstream>

#include "gateway/feed/live_feed.h"
#include "gateway/feed/unit_list.h"
#include "outputs/libav.h"
#include "platform/h264/h264_headers.h"
#include "tests/gateway/feed/feed_bytes.h"
#include "tests/outputs/read_back.h"
#include "tests/outputs/test_film.h"
#include "tests/platform/ffmpeg/md5.h"
#include "tests/platform/ffmpeg/streams/decoded_stream.h"
#include "tests/platform/linux/temporary_folder.h"

namespace zel::gateway::test {
namespace {

using zel::test::TemporaryFolder;

// What a decoder makes of a file's video.
struct Played {
  int pictures = 0;
  std::string md5;  // of the planes of all pictures, one after the other
};

struct FreeDecoder {
  void operator()(AVCodecContext* decoder) const { avcodec_free_context(&decoder); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using DecoderPtr = std::unique_ptr<AVCodecContext, FreeDecoder>;
using FramePtr = std::unique_ptr<AVFrame, FreeDecoder>;

void addPlanes(const AVFrame& frame, zel::test::Md5& sum) {
  for (int plane = 0; plane < 3; ++plane) {
    const int half = plane == 0 ? 0 : 1;
    for (int row = 0; row < frame.height >> half; ++row) {
      const std::uint8_t* const line = frame.data[plane] + std::ptrdiff_t{row} * frame.linesize[plane];
      sum.add(line, static_cast<std::size_t>(frame.width >> half));
    }
  }
}

void takePictures(AVCodecContext& decoder, Played& played, zel::test::Md5& sum) {
  const FramePtr frame(av_frame_alloc());
  while (avcodec_receive_frame(&decoder, frame.get()) == 0) {
    ++played.pictures;
    addPlanes(*frame, sum);
  }
}

Played play(const std::string& file) {
  Played played;
  AVFormatContext* opened = nullptr;
  if (avformat_open_input(&opened, file.c_str(), nullptr, nullptr) < 0) return played;
  const DemuxerPtr demuxer(opened);
  if (avformat_find_stream_info(demuxer.get(), nullptr) < 0) return played;
  const AVCodecParameters& parameters = *demuxer->streams[0]->codecpar;
  const DecoderPtr decoder(avcodec_alloc_context3(avcodec_find_decoder(parameters.codec_id)));
  avcodec_parameters_to_context(decoder.get(), &parameters);
  decoder->err_recognition = AV_EF_EXPLODE;
  if (avcodec_open2(decoder.get(), nullptr, nullptr) < 0) return played;
  const PacketPtr packet(av_packet_alloc());
  zel::test::Md5 sum;
  while (av_read_frame(demuxer.get(), packet.get()) >= 0) {
    if (packet->stream_index == 0 && avcodec_send_packet(decoder.get(), packet.get()) < 0) return played;
    av_packet_unref(packet.get());
    takePictures(*decoder, played, sum);
  }
  avcodec_send_packet(decoder.get(), nullptr);
  takePictures(*decoder, played, sum);
  played.md5 = sum.text();
  return played;
}

// Without sets, which the recording brings, and without sound.
StreamHeaders ofSize(std::int32_t width, std::int32_t height) {
  StreamHeaders headers;
  headers.width = width;
  headers.height = height;
  return headers;
}

class PlayableTest : public ::testing::Test {
 protected:
  // What a viewer that has been there from the beginning writes to a file.
  std::string recorded(const StreamHeaders& headers, const std::vector<MediaPacket>& packets, double rate) {
    LiveFeed::Options options;
    options.rate = rate;
    LiveFeed feed(options);
    const auto viewer = feed.join(FeedForm::mp4, [] {});
    std::ofstream file(folder_.file("film.mp4"), std::ios::binary);
    feed.onHeaders(headers);
    for (const MediaPacket& packet : packets) {
      feed.onPacket(packet);
      const Bytes bytes = readAll(*viewer);
      file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    return folder_.file("film.mp4");
  }

  // The pictures of a recording in H.264, 40 ms apart, with the headers of its first sets.
  static std::vector<MediaPacket> picturesIn(const Bytes& recording, StreamHeaders& headers) {
    std::vector<MediaPacket> packets;
    Bytes slices;
    bool key = false;
    const auto finish = [&] {
      if (slices.empty()) return;
      const auto time = static_cast<std::int64_t>(packets.size()) * 40'000;
      packets.push_back({Track::video, key, time, ZELData(std::move(slices)), std::nullopt});
      slices = {};
    };
    for (const auto unit : unitsOf(recording)) {
      const auto type = platform::typeOf(unit.front());
      if (type == platform::H264UnitType::sequence && headers.sps.empty()) headers.sps = ZELData(unit);
      if (type == platform::H264UnitType::picture && headers.pps.empty()) headers.pps = ZELData(unit);
      const auto slice = platform::parseH264SliceStart(unit);
      if (!slice) continue;
      if (slice->beginsPicture) finish();
      key = slice->key;
      if (!slices.empty()) slices.insert(slices.end(), {0, 0, 1});  // as recordings have it between slices
      if (slices.empty()) slices.assign({0, 0, 0, 1});
      slices.insert(slices.end(), unit.begin(), unit.end());
    }
    finish();
    return packets;
  }

  TemporaryFolder folder_;
};

TEST_F(PlayableTest, AFilmPlaysWithItsTimesItsColourAndItsSound) {
  TestFilm film(12);
  film.headers.colour = {true, 6, 6, 6};
  const std::string file = recorded(film.headers, film.packets, 10);
  const ReadBack read = readBack(file);
  EXPECT_EQ(read.pictures, 12);
  EXPECT_EQ(read.audioFrames, 48);
  EXPECT_TRUE(read.ordered);
  EXPECT_TRUE(read.beginsWithKey);
  EXPECT_EQ(read.width, 64);
  EXPECT_EQ(read.height, 32);
  for (std::size_t one = 0; one < read.pictureTimes.size(); ++one)
    EXPECT_DOUBLE_EQ(read.pictureTimes[one], static_cast<double>(one) / 10);
  EXPECT_EQ(read.videoCodec, AV_CODEC_ID_H264);
  EXPECT_EQ(read.audioCodec, AV_CODEC_ID_AAC);
  EXPECT_EQ(play(file).pictures, 12);
}

TEST_F(PlayableTest, AFilmWithoutSoundPlays) {
  TestFilm film(5);
  film.headers.audioConfig = {};
  const ReadBack read = readBack(recorded(film.headers, film.packets, 10));
  EXPECT_EQ(read.pictures, 5);
  EXPECT_EQ(read.audioFrames, 0);
  EXPECT_EQ(read.audioCodec, AV_CODEC_ID_NONE);
}

TEST_F(PlayableTest, AStreamThatLeavesItsColourOpenHasItInTheFile) {
  ZEL_REAL_MEDIA(recording, "h264/test_cif_P_CABAC_slice.264");
  StreamHeaders headers = ofSize(352, 288);
  headers.colour = {true, 6, 6, 6};
  auto packets = picturesIn(recording, headers);
  packets.resize(5);
  AVFormatContext* opened = nullptr;
  const std::string file = recorded(headers, packets, 25);
  ASSERT_EQ(avformat_open_input(&opened, file.c_str(), nullptr, nullptr), 0);
  const DemuxerPtr demuxer(opened);
  const AVCodecParameters& video = *demuxer->streams[0]->codecpar;
  EXPECT_EQ(video.color_range, AVCOL_RANGE_JPEG);
  EXPECT_EQ(video.color_primaries, AVCOL_PRI_SMPTE170M);
  EXPECT_EQ(video.color_trc, AVCOL_TRC_SMPTE170M);
  EXPECT_EQ(video.color_space, AVCOL_SPC_SMPTE170M);
}

TEST_F(PlayableTest, PicturesOfFourteenSlicesPlayToTheLastSample) {
  ZEL_REAL_MEDIA(recording, "h264/test_cif_P_CABAC_slice.264");
  StreamHeaders headers = ofSize(352, 288);
  const auto packets = picturesIn(recording, headers);
  const Played played = play(recorded(headers, packets, 25));
  EXPECT_EQ(played.pictures, 300);
  EXPECT_EQ(played.md5, "b2dd907cd1d30a189d05e1e86c4f4da1");
}

TEST_F(PlayableTest, ACamerasOwnStreamPlaysToTheLastSample) {
  ZEL_REAL_MEDIA(recording, "h264/kvs-frames-001-060.h264");
  StreamHeaders headers = ofSize(640, 480);
  const auto packets = picturesIn(recording, headers);
  const Played played = play(recorded(headers, packets, 25));
  EXPECT_EQ(played.pictures, 60);
  EXPECT_EQ(played.md5, "0c0ccd1dc51ca3a84f88d0e58518fb2c");
}

}  // namespace
}  // namespace zel::gateway::test

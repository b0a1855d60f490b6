#include "tests/zelcam/colour_bars.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <algorithm>
#include <cmath>
#include <span>

#include "outputs/libav.h"
#include "platform/ffmpeg/libav.h"
#include "simulator/media/annex_b.h"

namespace zel::test {
namespace {

using platform::CodecContextPtr;
using platform::FramePtr;

constexpr int kWidth = 640, kHeight = 320, kMiddle = 160, kSide = 48;
constexpr int kPictures = 10;

struct Samples {
  int luma, cb, cr;
};

// The bars in 8 bits as each standard has them.
constexpr std::array<Samples, 8> kLimited601 = {Samples{180, 128, 128}, {161, 44, 142}, {131, 156, 44}, {112, 72, 58},
                                                {84, 184, 198},         {65, 100, 212}, {35, 212, 114}, {16, 128, 128}};
constexpr std::array<Samples, 8> kFull601 = {Samples{191, 128, 128}, {169, 33, 144}, {134, 160, 33}, {112, 65, 48},
                                             {79, 191, 208},         {57, 96, 224},  {22, 224, 112}, {0, 128, 128}};
constexpr std::array<Samples, 8> kLimited709 = {Samples{180, 128, 128}, {168, 44, 136}, {145, 147, 44}, {133, 63, 52},
                                                {63, 193, 204},         {51, 109, 212}, {28, 212, 120}, {16, 128, 128}};
constexpr std::array<Samples, 8> kFull709 = {Samples{191, 128, 128}, {177, 33, 137}, {150, 150, 33}, {137, 54, 41},
                                             {54, 202, 215},         {41, 106, 224}, {14, 224, 119}, {0, 128, 128}};

const std::array<Samples, 8>& samplesOf(const ColourTags& tags) {
  if (tags.number == 1) return tags.fullRange ? kFull709 : kLimited709;
  return tags.fullRange ? kFull601 : kLimited601;
}

// The bar at a pixel; grey elsewhere.
Samples sampleAt(const std::array<Samples, 8>& bars, int x, int y) {
  const bool right = x >= kWidth / 2;
  const int column = (right ? x - kWidth / 2 : x) - kMiddle, row = y - kMiddle;
  if (column < -kSide || column >= kSide || row < -kSide || row >= kSide) return {100, 128, 128};
  return bars[static_cast<std::size_t>((right ? 4 : 0) + (row < 0 ? 0 : 2) + (column < 0 ? 0 : 1))];
}

CodecContextPtr openEncoder(const ColourTags& tags) {
  const AVCodec* codec = avcodec_find_encoder_by_name("libx264");
  CodecContextPtr context(codec != nullptr ? avcodec_alloc_context3(codec) : nullptr);
  if (!context) return nullptr;
  platform::silence(*context);
  context->width = kWidth;
  context->height = kHeight;
  context->time_base = {1, 30};
  context->pix_fmt = AV_PIX_FMT_YUV420P;
  context->color_range = tags.fullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
  if (tags.number) {
    context->color_primaries = static_cast<AVColorPrimaries>(*tags.number);
    context->color_trc = static_cast<AVColorTransferCharacteristic>(*tags.number);
    context->colorspace = static_cast<AVColorSpace>(*tags.number);
  }
  context->thread_count = 1;
  for (const auto& [name, value] :
       {std::pair("preset", "ultrafast"), std::pair("tune", "zerolatency"), std::pair("qp", "0"),
        std::pair("x264-params", "repeat-headers=1:annexb=1:slices=1")})
    av_opt_set(context.get(), name, value, AV_OPT_SEARCH_CHILDREN);
  return avcodec_open2(context.get(), codec, nullptr) == 0 ? std::move(context) : nullptr;
}

FramePtr barsFrame(const ColourTags& tags, int number) {
  FramePtr frame(av_frame_alloc());
  frame->format = AV_PIX_FMT_YUV420P;
  frame->width = kWidth;
  frame->height = kHeight;
  frame->pts = number;
  if (av_frame_get_buffer(frame.get(), 0) < 0) return nullptr;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const Samples samples = sampleAt(samplesOf(tags), x, y);
      frame->data[0][y * frame->linesize[0] + x] = static_cast<std::uint8_t>(samples.luma);
      frame->data[1][y / 2 * frame->linesize[1] + x / 2] = static_cast<std::uint8_t>(samples.cb);
      frame->data[2][y / 2 * frame->linesize[2] + x / 2] = static_cast<std::uint8_t>(samples.cr);
    }
  }
  return frame;
}

// libx264 writes start codes of three bytes within a picture; a camera's have four.
void append(std::span<const std::uint8_t> picture, std::vector<std::uint8_t>& stream) {
  for (const simulator::UnitPlace& unit : simulator::unitsIn(picture)) {
    const auto bytes = picture.subspan(unit.header, unit.end - unit.header);
    stream.insert(stream.end(), {0, 0, 0, 1});
    stream.insert(stream.end(), bytes.begin(), bytes.end());
  }
}

// The mean of the pixels that are at most so far from the place.
Rgb meanAround(const simulator::Picture& picture, int column, int row, int reach) {
  Rgb sum{};
  for (int y = row - reach; y < row + reach; ++y)
    for (int x = column - reach; x < column + reach; ++x)
      for (std::size_t i = 0; i < 3; ++i) sum[i] += picture.rgb[simulator::indexOf(picture, x, y) + i];
  for (double& value : sum) value /= 4.0 * reach * reach;
  return sum;
}

std::uint8_t byteOf(double value) { return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 255.0))); }

// A stream that says nothing is of limited range and BT.601 for FFmpeg.
simulator::Picture coloursOf(const AVFrame& frame) {
  const bool full = frame.color_range == AVCOL_RANGE_JPEG, is709 = frame.colorspace == AVCOL_SPC_BT709;
  const double kr = is709 ? 0.2126 : 0.299, kb = is709 ? 0.0722 : 0.114;
  auto picture = simulator::blackPicture(frame.width, frame.height);
  for (int y = 0; y < frame.height; ++y) {
    for (int x = 0; x < frame.width; ++x) {
      const auto sample = [&](int plane, int column, int row) {
        return frame.data[plane][row * frame.linesize[plane] + column];
      };
      const double luma = full ? sample(0, x, y) : (sample(0, x, y) - 16) * 255.0 / 219;
      const double cb = (sample(1, x / 2, y / 2) - 128) * (full ? 1 : 255.0 / 224);
      const double cr = (sample(2, x / 2, y / 2) - 128) * (full ? 1 : 255.0 / 224);
      const double red = luma + 2 * (1 - kr) * cr, blue = luma + 2 * (1 - kb) * cb;
      std::uint8_t* pixel = picture.rgb.data() + simulator::indexOf(picture, x, y);
      pixel[0] = byteOf(red);
      pixel[1] = byteOf((luma - kr * red - kb * blue) / (1 - kr - kb));
      pixel[2] = byteOf(blue);
    }
  }
  return picture;
}

// The decoder of a file's video, told what the file tells. Null where there is none.
CodecContextPtr decoderOf(const AVStream& stream) {
  const AVCodec* const codec = avcodec_find_decoder(stream.codecpar->codec_id);
  CodecContextPtr decoder(avcodec_alloc_context3(codec));
  decoder->thread_count = 1;
  const bool isOpen = avcodec_parameters_to_context(decoder.get(), stream.codecpar) >= 0 &&
                      avcodec_open2(decoder.get(), codec, nullptr) == 0;
  return isOpen ? std::move(decoder) : nullptr;
}

}  // namespace

std::vector<std::uint8_t> colourBars(const ColourTags& tags) {
  const CodecContextPtr encoder = openEncoder(tags);
  const platform::PacketPtr packet(av_packet_alloc());
  std::vector<std::uint8_t> stream;
  for (int number = 0; encoder && number < kPictures; ++number) {
    avcodec_send_frame(encoder.get(), barsFrame(tags, number).get());
    while (avcodec_receive_packet(encoder.get(), packet.get()) == 0) {
      append({packet->data, static_cast<std::size_t>(packet->size)}, stream);
      av_packet_unref(packet.get());
    }
  }
  return stream;
}

std::array<Rgb, 8> barsIn(const simulator::Picture& picture) {
  std::array<Rgb, 8> bars;
  for (int bar = 0; bar < 8; ++bar) {
    const int column = (bar < 4 ? kMiddle : kWidth / 2 + kMiddle) + (bar % 2 == 0 ? -kSide / 2 : kSide / 2);
    const int row = kMiddle + (bar % 4 < 2 ? -kSide / 2 : kSide / 2);
    bars[static_cast<std::size_t>(bar)] = meanAround(picture, column, row, 12);
  }
  return bars;
}

// A bar's middle is 24 pixels beside the lens's axis and above or below it. With 1.58 pixels a degree that is 15.6
// degrees aside and 15.0 up or down, and the panorama has 1.78 pixels a degree.
std::array<Rgb, 8> barsInPanorama(const simulator::Picture& picture) {
  std::array<Rgb, 8> bars;
  for (int bar = 0; bar < 8; ++bar) {
    const int column = (bar < 4 ? kWidth / 2 : 0) + (bar % 2 == 0 ? -28 : 28), row = kMiddle + (bar % 4 < 2 ? -27 : 27);
    bars[static_cast<std::size_t>(bar)] = meanAround(picture, (column + kWidth) % kWidth, row, 8);
  }
  return bars;
}

std::optional<ReadPicture> firstPictureIn(const std::string& file) {
  AVFormatContext* opened = nullptr;
  if (avformat_open_input(&opened, file.c_str(), nullptr, nullptr) < 0) return std::nullopt;
  const DemuxerPtr demuxer(opened);
  if (avformat_find_stream_info(demuxer.get(), nullptr) < 0) return std::nullopt;
  const int video = av_find_best_stream(demuxer.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
  const CodecContextPtr decoder = video >= 0 ? decoderOf(*demuxer->streams[video]) : nullptr;
  const platform::PacketPtr packet(av_packet_alloc());
  const FramePtr frame(av_frame_alloc());
  while (decoder && av_read_frame(demuxer.get(), packet.get()) >= 0) {
    const bool isVideo = packet->stream_index == video;
    if (isVideo) avcodec_send_packet(decoder.get(), packet.get());
    av_packet_unref(packet.get());
    if (!isVideo || avcodec_receive_frame(decoder.get(), frame.get()) < 0) continue;
    const bool isComplete = frame->color_range != AVCOL_RANGE_UNSPECIFIED &&
                            frame->color_primaries != AVCOL_PRI_UNSPECIFIED &&
                            frame->color_trc != AVCOL_TRC_UNSPECIFIED && frame->colorspace != AVCOL_SPC_UNSPECIFIED;
    return ReadPicture{coloursOf(*frame), isComplete};
  }
  return std::nullopt;
}

}  // namespace zel::test

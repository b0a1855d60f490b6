#include "tests/platform/ffmpeg/streams/stream_maker.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>

#include "platform/ffmpeg/libav.h"
#include "tests/platform/ffmpeg/md5.h"

namespace zel::test {
namespace {

using platform::CodecContextPtr;
using platform::FramePtr;
using platform::PacketPtr;

std::vector<std::uint8_t> annexB(const std::vector<Unit>& units) {
  std::vector<std::uint8_t> stream;
  for (const Unit& unit : units) {
    stream.insert(stream.end(), {0, 0, 0, 1});
    stream.insert(stream.end(), unit.begin(), unit.end());
  }
  return stream;
}

CodecContextPtr openEncoder(const StreamPlan& plan) {
  const AVCodec* codec = avcodec_find_encoder_by_name("libx264");
  if (codec == nullptr) return nullptr;
  CodecContextPtr context(avcodec_alloc_context3(codec));
  platform::silence(*context);
  context->width = plan.width;
  context->height = plan.height;
  context->time_base = {1, 30};
  context->pix_fmt = av_get_pix_fmt(plan.pixelFormat);
  context->color_range = static_cast<AVColorRange>(plan.range);
  context->color_primaries = static_cast<AVColorPrimaries>(plan.primaries);
  context->color_trc = static_cast<AVColorTransferCharacteristic>(plan.transfer);
  context->colorspace = static_cast<AVColorSpace>(plan.matrix);
  context->thread_count = 1;
  std::map<std::string, std::string> options{
      {"preset", "ultrafast"}, {"tune", "zerolatency"}, {"x264-params", "slices=1"}};
  for (const auto& [name, value] : plan.options) options[name] = value;
  for (const auto& [name, value] : options)
    av_opt_set(context.get(), name.c_str(), value.c_str(), AV_OPT_SEARCH_CHILDREN);
  return avcodec_open2(context.get(), codec, nullptr) == 0 ? std::move(context) : nullptr;
}

FramePtr stripes(const AVCodecContext& context, int number) {
  FramePtr frame(av_frame_alloc());
  frame->format = context.pix_fmt;
  frame->width = context.width;
  frame->height = context.height;
  frame->pts = number;
  if (av_frame_get_buffer(frame.get(), 0) < 0) return nullptr;
  const AVPixFmtDescriptor& format = *av_pix_fmt_desc_get(context.pix_fmt);
  const bool wide = format.comp[0].depth > 8;  // two bytes a sample, the lower one first
  for (int plane = 0; plane < 3; ++plane) {
    const int rows = plane > 0 ? AV_CEIL_RSHIFT(context.height, format.log2_chroma_h) : context.height;
    const int bytes = frame->linesize[plane] * rows;
    for (int i = 0; i < bytes; ++i)
      frame->data[plane][i] =
          static_cast<std::uint8_t>(wide && i % 2 == 1 ? 1 : 40 + 60 * plane + (i + 5 * number) % 64);
  }
  return frame;
}

void drain(AVCodecContext& context, std::vector<std::uint8_t>& stream) {
  const PacketPtr packet(av_packet_alloc());
  while (avcodec_receive_packet(&context, packet.get()) == 0) {
    stream.insert(stream.end(), packet->data, packet->data + packet->size);
    av_packet_unref(packet.get());
  }
}

void addDecoded(AVCodecContext& decoder, Md5& sum) {
  const FramePtr frame(av_frame_alloc());
  while (avcodec_receive_frame(&decoder, frame.get()) == 0) {
    for (int plane = 0; plane < 3; ++plane) {
      const int width = plane == 0 ? frame->width : (frame->width + 1) / 2;
      const int rows = plane == 0 ? frame->height : (frame->height + 1) / 2;
      for (int row = 0; row < rows; ++row)
        sum.add(frame->data[plane] + row * frame->linesize[plane], static_cast<std::size_t>(width));
    }
  }
}

}  // namespace

std::vector<Unit> makeStream(const StreamPlan& plan) {
  const CodecContextPtr context = openEncoder(plan);
  if (!context) return {};
  std::vector<std::uint8_t> stream;
  for (int number = 0; number < plan.pictures; ++number) {
    avcodec_send_frame(context.get(), stripes(*context, number).get());
    drain(*context, stream);
  }
  avcodec_send_frame(context.get(), nullptr);
  drain(*context, stream);
  return unitsOf(stream);
}

std::vector<Unit> slicesOf(const std::vector<Unit>& units) {
  std::vector<Unit> slices;
  std::ranges::copy_if(units, std::back_inserter(slices),
                       [](const Unit& unit) { return typeOf(unit) == 1 || typeOf(unit) == 5; });
  return slices;
}

Unit firstOf(const std::vector<Unit>& units, int type) {
  const auto found = std::ranges::find(units, type, typeOf);
  return found == units.end() ? Unit() : *found;
}

std::string md5ByFfmpeg(const std::vector<Unit>& units) {
  const CodecContextPtr decoder(avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_H264)));
  platform::silence(*decoder);
  decoder->thread_count = 1;
  if (avcodec_open2(decoder.get(), nullptr, nullptr) != 0) return {};
  Md5 sum;
  std::vector<std::uint8_t> stream = annexB(units);
  const std::size_t size = stream.size();
  stream.resize(size + AV_INPUT_BUFFER_PADDING_SIZE);
  AVCodecParserContext* parser = av_parser_init(AV_CODEC_ID_H264);
  const PacketPtr packet(av_packet_alloc());
  for (std::size_t at = 0, ended = 0; ended == 0;) {
    ended = at == size ? 1 : 0;  // once more without bytes, for the last picture
    at += static_cast<std::size_t>(av_parser_parse2(parser, decoder.get(), &packet->data, &packet->size,
                                                    stream.data() + at, static_cast<int>(size - at), AV_NOPTS_VALUE,
                                                    AV_NOPTS_VALUE, 0));
    if (packet->size > 0) avcodec_send_packet(decoder.get(), packet.get());
    addDecoded(*decoder, sum);
  }
  av_parser_close(parser);
  avcodec_send_packet(decoder.get(), nullptr);
  addDecoded(*decoder, sum);
  return sum.text();
}

}  // namespace zel::test

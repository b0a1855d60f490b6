#include "apps/zelcam/commands/file_summary.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <fmt/format.h>

#include <memory>
#include <utility>

namespace zel::app {
namespace {

struct Deleter {
  void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using DemuxerPtr = std::unique_ptr<AVFormatContext, Deleter>;
using DecoderPtr = std::unique_ptr<AVCodecContext, Deleter>;

DemuxerPtr open(const std::string& path) {
  AVFormatContext* opened = nullptr;
  if (avformat_open_input(&opened, path.c_str(), nullptr, nullptr) < 0) return nullptr;
  DemuxerPtr demuxer(opened);
  return avformat_find_stream_info(opened, nullptr) < 0 ? nullptr : std::move(demuxer);
}

// Counts the frames of one stream's decoder.
class StreamReader {
 public:
  explicit StreamReader(const AVStream& stream) {
    const AVCodec* const codec = avcodec_find_decoder(stream.codecpar->codec_id);
    decoder_.reset(codec != nullptr ? avcodec_alloc_context3(codec) : nullptr);
    if (decoder_ == nullptr || avcodec_parameters_to_context(decoder_.get(), stream.codecpar) < 0) return;
    decoder_->thread_count = 0;  // one for each processor
    decoder_->err_recognition = AV_EF_EXPLODE;
    isGood_ = avcodec_open2(decoder_.get(), codec, nullptr) == 0;
    summary_.codec = avcodec_get_name(stream.codecpar->codec_id);
  }

  // packet: null at the end. False where the stream is damaged.
  bool read(const AVPacket* packet) {
    isGood_ = isGood_ && avcodec_send_packet(decoder_.get(), packet) == 0;
    while (isGood_ && avcodec_receive_frame(decoder_.get(), frame_.get()) == 0) {
      ++summary_.frames;
      summary_.width = frame_->width;
      summary_.height = frame_->height;
      isGood_ = frame_->decode_error_flags == 0 && (frame_->flags & AV_FRAME_FLAG_CORRUPT) == 0;
    }
    return isGood_;
  }

  const StreamSummary& summary() const { return summary_; }

 private:
  DecoderPtr decoder_;
  std::unique_ptr<AVFrame, Deleter> frame_{av_frame_alloc()};
  StreamSummary summary_;
  bool isGood_ = false;
};

}  // namespace

std::vector<StreamSummary> fileSummary(const std::string& path) {
  const DemuxerPtr demuxer = open(path);
  if (!demuxer) return {};
  std::vector<StreamReader> readers;
  readers.reserve(demuxer->nb_streams);
  for (unsigned i = 0; i < demuxer->nb_streams; ++i) readers.emplace_back(*demuxer->streams[i]);
  const std::unique_ptr<AVPacket, Deleter> packet(av_packet_alloc());
  int end = 0;
  while ((end = av_read_frame(demuxer.get(), packet.get())) >= 0) {
    const auto stream = static_cast<std::size_t>(packet->stream_index);
    const bool good = stream < readers.size() && readers[stream].read(packet.get());
    av_packet_unref(packet.get());
    if (!good) return {};
  }
  if (end != AVERROR_EOF) return {};
  std::vector<StreamSummary> streams;
  for (StreamReader& reader : readers) {
    if (!reader.read(nullptr) || reader.summary().frames == 0) return {};
    streams.push_back(reader.summary());
  }
  return streams;
}

std::string textOf(const std::vector<StreamSummary>& streams) {
  std::string text;
  for (const StreamSummary& stream : streams) {
    if (!text.empty()) text += ' ';
    text += stream.width == 0 ? fmt::format("{},{}", stream.codec, stream.frames)
                              : fmt::format("{},{},{},{}", stream.codec, stream.width, stream.height, stream.frames);
  }
  return text;
}

}  // namespace zel::app

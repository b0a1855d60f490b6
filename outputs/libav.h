#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <memory>
#include <string>

// Owning pointers to FFmpeg's objects.

namespace zel {

struct MuxerDeleter {
  void operator()(AVFormatContext* context) const {
    if (context->oformat != nullptr && (context->oformat->flags & AVFMT_NOFILE) == 0) avio_closep(&context->pb);
    avformat_free_context(context);
  }
};
struct DemuxerDeleter {
  void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
struct PacketDeleter {
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

using MuxerPtr = std::unique_ptr<AVFormatContext, MuxerDeleter>;
using DemuxerPtr = std::unique_ptr<AVFormatContext, DemuxerDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, PacketDeleter>;

// FFmpeg's options by name.
class Options {
 public:
  Options() = default;
  ~Options() { av_dict_free(&options_); }
  Options(const Options&) = delete;
  Options& operator=(const Options&) = delete;

  void set(const std::string& name, const std::string& value) {
    av_dict_set(&options_, name.c_str(), value.c_str(), 0);
  }
  AVDictionary** get() { return &options_; }

 private:
  AVDictionary* options_ = nullptr;
};

// FFmpeg's text for an error.
inline std::string wordsFor(int error) {
  char text[AV_ERROR_MAX_STRING_SIZE] = {};
  av_strerror(error, text, sizeof text);
  return text;
}

}  // namespace zel

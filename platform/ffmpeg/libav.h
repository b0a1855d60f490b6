#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
#include <libavutil/opt.h>
}

#include <memory>

// Owning pointers to FFmpeg's objects.

namespace zel::platform {

struct LibavDeleter {
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

using CodecContextPtr = std::unique_ptr<AVCodecContext, LibavDeleter>;
using FramePtr = std::unique_ptr<AVFrame, LibavDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, LibavDeleter>;

// FFmpeg's log belongs to the host. A context's messages get a level above any that a host selects (at most 56; the
// level is a byte), so that none is printed, without changing the process-wide setting.
inline void silence(AVCodecContext& context) { context.log_level_offset = 100; }

// A context that is silent; null without the codec, or without memory.
inline CodecContextPtr silentContext(const AVCodec* codec) {
  CodecContextPtr context(codec != nullptr ? avcodec_alloc_context3(codec) : nullptr);
  if (context) silence(*context);
  return context;
}

}  // namespace zel::platform

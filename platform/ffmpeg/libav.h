#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

#include <memory>

// FFmpeg's objects with an owner, and nothing more.

namespace zel::platform {

struct LibavDeleter {
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

using CodecContextPtr = std::unique_ptr<AVCodecContext, LibavDeleter>;
using FramePtr = std::unique_ptr<AVFrame, LibavDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, LibavDeleter>;

// FFmpeg's log belongs to the host. What a context says is lifted above every level that a host asks for (56 at most;
// the level is a byte), so that nothing of it comes out, without touching the process-wide setting.
inline void silence(AVCodecContext& context) { context.log_level_offset = 100; }

}  // namespace zel::platform

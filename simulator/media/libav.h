#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

#include <memory>

// FFmpeg's objects with an owner, and nothing more.

namespace zel::simulator {

struct LibavDeleter {
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

using CodecContextPtr = std::unique_ptr<AVCodecContext, LibavDeleter>;
using FramePtr = std::unique_ptr<AVFrame, LibavDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, LibavDeleter>;

}  // namespace zel::simulator

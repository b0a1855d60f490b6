#include "tests/platform/ffmpeg/streams/video_file.h"

extern "C" {
#include <libavcodec/bsf.h>
#include <libavformat/avformat.h>
#include <libavutil/mathematics.h>
}

#include <memory>

#include "platform/ffmpeg/libav.h"
#include "tests/platform/ffmpeg/streams/decoded_stream.h"

namespace zel::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Closer {
  void operator()(AVFormatContext* file) const { avformat_close_input(&file); }
  void operator()(AVBSFContext* filter) const { av_bsf_free(&filter); }
};
using File = std::unique_ptr<AVFormatContext, Closer>;
using Filter = std::unique_ptr<AVBSFContext, Closer>;

File opened(const std::string& name) {
  AVFormatContext* file = nullptr;
  if (avformat_open_input(&file, realMediaPath(name).c_str(), nullptr, nullptr) != 0) return nullptr;
  return File(file);
}

// What puts start codes and parameter sets into the stream.
Filter annexBFilter(const AVStream& stream) {
  AVBSFContext* filter = nullptr;
  if (av_bsf_alloc(av_bsf_get_by_name("h264_mp4toannexb"), &filter) != 0) return nullptr;
  Filter made(filter);
  avcodec_parameters_copy(made->par_in, stream.codecpar);
  return av_bsf_init(made.get()) == 0 ? std::move(made) : nullptr;
}

void filter(AVBSFContext& filter, AVPacket* packet, Bytes& into) {
  av_bsf_send_packet(&filter, packet);
  const platform::PacketPtr out(av_packet_alloc());
  while (av_bsf_receive_packet(&filter, out.get()) == 0) {
    into.insert(into.end(), out->data, out->data + out->size);
    av_packet_unref(out.get());
  }
}

}  // namespace

Bytes realVideo(const std::string& name) {
  const File file = opened(name);
  if (!file) return {};
  const int stream = av_find_best_stream(file.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
  if (stream < 0) return {};
  const Filter annexB = annexBFilter(*file->streams[stream]);
  if (!annexB) return {};
  Bytes bytes;
  const platform::PacketPtr packet(av_packet_alloc());
  while (av_read_frame(file.get(), packet.get()) == 0) {
    if (packet->stream_index == stream) filter(*annexB, packet.get(), bytes);
    av_packet_unref(packet.get());
  }
  return bytes;
}

RealSound realSound(const std::string& name) {
  const File file = opened(name);
  if (!file) return {};
  const int index = av_find_best_stream(file.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
  if (index < 0) return {};
  const AVStream& stream = *file->streams[index];
  RealSound sound;
  sound.configuration.assign(stream.codecpar->extradata, stream.codecpar->extradata + stream.codecpar->extradata_size);
  const platform::PacketPtr packet(av_packet_alloc());
  while (av_read_frame(file.get(), packet.get()) == 0) {
    if (packet->stream_index == index) {
      sound.frames.push_back(
          {Bytes(packet->data, packet->data + packet->size), av_rescale_q(packet->pts, stream.time_base, {1, 1000})});
    }
    av_packet_unref(packet.get());
  }
  return sound;
}

}  // namespace zel::test

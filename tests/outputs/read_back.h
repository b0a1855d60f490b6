#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "outputs/libav.h"

namespace zel {

// What can be read back from a file; nothing where it cannot be read.
struct ReadBack {
  int pictures = 0, audioFrames = 0;
  std::vector<double> pictureTimes;  // seconds
  double firstPicture = -1, firstSound = -1;
  bool ordered = true;  // time stamps never go backwards
  bool beginsWithKey = false;
  bool spherical = false;
  AVCodecID videoCodec = AV_CODEC_ID_NONE, audioCodec = AV_CODEC_ID_NONE;
  int width = 0, height = 0;
};

inline ReadBack readBack(const std::string& file) {
  AVFormatContext* opened = nullptr;
  ReadBack read;
  if (avformat_open_input(&opened, file.c_str(), nullptr, nullptr) < 0) return read;
  const DemuxerPtr demuxer(opened);
  if (avformat_find_stream_info(demuxer.get(), nullptr) < 0) return read;
  const PacketPtr packet(av_packet_alloc());
  std::vector<std::int64_t> last(demuxer->nb_streams, INT64_MIN);
  while (av_read_frame(demuxer.get(), packet.get()) >= 0) {
    AVStream& stream = *demuxer->streams[packet->stream_index];
    if (stream.codecpar->width > 0) {
      read.width = stream.codecpar->width;
      read.height = stream.codecpar->height;
    }
    const bool video = stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
    (video ? read.videoCodec : read.audioCodec) = stream.codecpar->codec_id;
    if (video && read.pictures == 0) read.beginsWithKey = (packet->flags & AV_PKT_FLAG_KEY) != 0;
    std::int64_t& before = last[static_cast<std::size_t>(packet->stream_index)];
    if (before != INT64_MIN && packet->dts <= before) read.ordered = false;
    const double time = static_cast<double>(packet->pts) * av_q2d(stream.time_base);
    if (before == INT64_MIN) (video ? read.firstPicture : read.firstSound) = time;
    before = packet->dts;
    if (video) read.pictureTimes.push_back(time);
    ++(video ? read.pictures : read.audioFrames);
    if (av_stream_get_side_data(&stream, AV_PKT_DATA_SPHERICAL, nullptr) != nullptr) read.spherical = true;
    av_packet_unref(packet.get());
  }
  return read;
}

}  // namespace zel

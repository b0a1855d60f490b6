#include "outputs/stream_setup.h"

extern "C" {
#include <libavutil/spherical.h>
#include <libavutil/stereo3d.h>
}

#include <algorithm>
#include <vector>

#include <ZELTarkaSDK/AudioConfig.h>

#include "platform/h264/h264_headers.h"

namespace zel {
namespace {

constexpr AVRational kMicroseconds = {1, 1'000'000};
constexpr AVRational kVideoClock = {1, 90'000};

std::vector<std::uint8_t> withStartCodes(const StreamHeaders& headers) {
  std::vector<std::uint8_t> bytes;
  for (const ZELData& set : {headers.sps, headers.pps}) platform::appendUnit(bytes, set.bytes());
  return bytes;
}

bool setExtraData(AVCodecParameters& parameters, std::span<const std::uint8_t> bytes) {
  auto* const extra = static_cast<std::uint8_t*>(av_mallocz(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE));
  if (extra == nullptr) return false;
  std::ranges::copy(bytes, extra);
  parameters.extradata = extra;
  parameters.extradata_size = static_cast<int>(bytes.size());
  return true;
}

// MP4 has a box for it; in other formats only the stream declares it.
void describeColour(AVCodecParameters& parameters, const VideoColour& colour) {
  parameters.format = colour.fullRange ? AV_PIX_FMT_YUVJ420P : AV_PIX_FMT_YUV420P;
  parameters.color_range = colour.fullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
  parameters.color_primaries = static_cast<AVColorPrimaries>(colour.primaries);
  parameters.color_trc = static_cast<AVColorTransferCharacteristic>(colour.transfer);
  parameters.color_space = static_cast<AVColorSpace>(colour.matrix);
}

bool addVideo(AVFormatContext& muxer, const StreamHeaders& headers) {
  AVStream* const stream = avformat_new_stream(&muxer, nullptr);
  if (stream == nullptr) return false;
  stream->time_base = kVideoClock;
  AVCodecParameters& parameters = *stream->codecpar;
  parameters.codec_type = AVMEDIA_TYPE_VIDEO;
  parameters.codec_id = AV_CODEC_ID_H264;
  describeColour(parameters, headers.colour);
  parameters.width = headers.width;
  parameters.height = headers.height;
  if (headers.spherical && !markSpherical(*stream)) return false;
  return setExtraData(parameters, withStartCodes(headers));
}

bool addAudio(AVFormatContext& muxer, const StreamHeaders& headers) {
  const auto config = parseAudioConfig(headers.audioConfig.bytes());
  AVStream* const stream = config ? avformat_new_stream(&muxer, nullptr) : nullptr;
  if (stream == nullptr) return false;
  stream->time_base = {1, config->rate};
  AVCodecParameters& parameters = *stream->codecpar;
  parameters.codec_type = AVMEDIA_TYPE_AUDIO;
  parameters.codec_id = AV_CODEC_ID_AAC;
  parameters.profile = FF_PROFILE_AAC_LOW;
  parameters.sample_rate = config->rate;
  parameters.frame_size = kSamplesPerFrame;
  av_channel_layout_default(&parameters.ch_layout, config->channels);
  return setExtraData(parameters, headers.audioConfig.bytes());
}

template <class Record>
bool attach(AVStream& stream, AVPacketSideDataType type, Record* record, std::size_t size) {
  if (record == nullptr) return false;
  if (av_stream_add_side_data(&stream, type, reinterpret_cast<std::uint8_t*>(record), size) == 0) return true;
  av_free(record);
  return false;
}

}  // namespace

bool markSpherical(AVStream& stream) {
  std::size_t size = 0;
  AVSphericalMapping* const mapping = av_spherical_alloc(&size);
  if (mapping != nullptr) mapping->projection = AV_SPHERICAL_EQUIRECTANGULAR;
  if (!attach(stream, AV_PKT_DATA_SPHERICAL, mapping, size)) return false;
  AVStereo3D* const stereo = av_stereo3d_alloc();
  if (stereo != nullptr) stereo->type = AV_STEREO3D_2D;
  return attach(stream, AV_PKT_DATA_STEREO3D, stereo, sizeof *stereo);
}

bool addStreams(AVFormatContext& muxer, const StreamHeaders& headers) {
  return addVideo(muxer, headers) && addAudio(muxer, headers);
}

// A copy with padding, since FFmpeg may read beyond a packet's end.
PacketPtr packetFor(const AVFormatContext& muxer, const MediaPacket& packet) {
  PacketPtr made(av_packet_alloc());
  const std::span<const std::uint8_t> bytes = packet.data.bytes();
  if (!made || av_new_packet(made.get(), static_cast<int>(bytes.size())) < 0) return nullptr;
  std::ranges::copy(bytes, made->data);
  made->stream_index = packet.track == Track::video ? kVideoStream : kAudioStream;
  const AVRational clock = muxer.streams[made->stream_index]->time_base;
  made->pts = made->dts = av_rescale_q(packet.time, kMicroseconds, clock);
  if (packet.key || packet.track == Track::audio) made->flags |= AV_PKT_FLAG_KEY;
  if (packet.track == Track::video) made->duration = av_rescale_q(packet.length, kMicroseconds, clock);
  if (packet.track == Track::audio) {
    made->duration = av_rescale_q(kSamplesPerFrame, {1, muxer.streams[kAudioStream]->codecpar->sample_rate}, clock);
  }
  return made;
}

}  // namespace zel

#include "tests/simulator/media/decoding.h"

#include <cstring>

namespace zel::simulator {

using platform::CodecContextPtr;
using platform::FramePtr;
using platform::PacketPtr;

namespace {

CodecContextPtr openDecoder(AVCodecID id) {
  const AVCodec* codec = avcodec_find_decoder(id);
  CodecContextPtr context(avcodec_alloc_context3(codec));
  context->thread_count = 1;
  avcodec_open2(context.get(), codec, nullptr);
  return context;
}

void send(AVCodecContext& decoder, const Bytes& bytes) {
  const PacketPtr packet(av_packet_alloc());
  av_new_packet(packet.get(), static_cast<int>(bytes.size()));
  std::memcpy(packet->data, bytes.data(), bytes.size());
  avcodec_send_packet(&decoder, packet.get());
}

Bytes planeOf(const AVFrame& frame, int plane) {
  const int half = plane == 0 ? 1 : 2;
  Bytes samples;
  for (int y = 0; y < frame.height / half; ++y) {
    const std::uint8_t* row = frame.data[plane] + y * frame.linesize[plane];
    samples.insert(samples.end(), row, row + frame.width / half);
  }
  return samples;
}

DecodedLuma lumaOf(const AVFrame& frame) {
  return {frame.width,           frame.height,      frame.color_range == AVCOL_RANGE_JPEG,
          frame.color_primaries, frame.color_trc,   frame.colorspace,
          planeOf(frame, 0),     planeOf(frame, 1), planeOf(frame, 2)};
}

}  // namespace

std::vector<DecodedLuma> decodePictures(std::span<const VideoPicture> pictures) {
  const CodecContextPtr decoder = openDecoder(AV_CODEC_ID_H264);
  const FramePtr frame(av_frame_alloc());
  std::vector<DecodedLuma> result;
  for (const VideoPicture& picture : pictures) {
    send(*decoder, picture.bytes);
    while (avcodec_receive_frame(decoder.get(), frame.get()) == 0) result.push_back(lumaOf(*frame));
  }
  return result;
}

std::vector<float> decodeSound(std::span<const Bytes> frames) {
  const CodecContextPtr decoder = openDecoder(AV_CODEC_ID_AAC);
  const FramePtr frame(av_frame_alloc());
  std::vector<float> samples;
  for (const Bytes& bytes : frames) {
    send(*decoder, bytes);
    while (avcodec_receive_frame(decoder.get(), frame.get()) == 0) {
      const auto* left = reinterpret_cast<const float*>(frame->data[0]);
      samples.insert(samples.end(), left, left + frame->nb_samples);
    }
  }
  return samples;
}

}  // namespace zel::simulator

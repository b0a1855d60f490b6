#include "simulator/media/beep.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/ffmpeg/libav.h"

namespace zel::simulator {

using platform::CodecContextPtr;
using platform::FramePtr;
using platform::PacketPtr;

namespace {

constexpr int kRate = 48000, kFrame = 1024;
constexpr std::size_t kFrames = static_cast<std::size_t>(kLoopSeconds) * kRate / kFrame;
static_assert(kFrames * kFrame == static_cast<std::size_t>(kLoopSeconds) * kRate);
constexpr int kBefore = 8;  // frames
constexpr double kHumHertz = 200, kHum = 0.02, kLoudness = 0.5;
constexpr double kRamp = 0.002;  // seconds of fading in and out, to avoid clicks

double tone(double hertz, double seconds) { return std::sin(2 * std::numbers::pi * hertz * seconds); }

CodecContextPtr openEncoder() {
  CodecContextPtr context = platform::silentContext(avcodec_find_encoder(AV_CODEC_ID_AAC));
  if (!context) return nullptr;
  context->sample_rate = kRate;
  context->sample_fmt = AV_SAMPLE_FMT_FLTP;
  context->bit_rate = 128'000;
  context->ch_layout = AV_CHANNEL_LAYOUT_STEREO;
  av_opt_set(context.get(), "aac_coder", "fast", AV_OPT_SEARCH_CHILDREN);  // a tone needs no search
  return avcodec_open2(context.get(), nullptr, nullptr) == 0 ? std::move(context) : nullptr;
}

FramePtr soundFrom(std::int64_t firstSample) {
  FramePtr frame(av_frame_alloc());
  frame->format = AV_SAMPLE_FMT_FLTP;
  frame->nb_samples = kFrame;
  frame->sample_rate = kRate;
  frame->ch_layout = AV_CHANNEL_LAYOUT_STEREO;
  frame->pts = firstSample;
  if (av_frame_get_buffer(frame.get(), 0) < 0) return nullptr;
  for (int channel = 0; channel < 2; ++channel) {
    auto* samples = reinterpret_cast<float*>(frame->data[channel]);
    for (int i = 0; i < kFrame; ++i)
      samples[i] = static_cast<float>(beepSample(static_cast<double>(firstSample + i) / kRate, channel == 1));
  }
  return frame;
}

Bytes withHeader(const AVPacket& packet) {
  Bytes frame = adtsHeader(static_cast<std::size_t>(packet.size));
  frame.insert(frame.end(), packet.data, packet.data + packet.size);
  return frame;
}

}  // namespace

double beepSample(double seconds, bool right) {
  const double phase = seconds - std::floor(seconds);
  const double hum = kHum * tone(kHumHertz, phase);
  if (phase >= kBeepSeconds) return hum;
  const double edge = std::min({1.0, phase / kRamp, (kBeepSeconds - phase) / kRamp});
  return hum + kLoudness * edge * tone(right ? 2 * kBeepHertz : kBeepHertz, phase);
}

// Encodes some frames before those that are kept, so that the loop has no click at its end.
AudioTrack makeBeeps() {
  AudioTrack track{kRate, {}};
  const CodecContextPtr encoder = openEncoder();
  if (!encoder) return track;
  const PacketPtr packet(av_packet_alloc());
  constexpr auto kRound = static_cast<std::int64_t>(kFrames) * kFrame;
  for (std::int64_t sample = kRound - kBefore * kFrame; track.frames.size() < kFrames; sample += kFrame) {
    if (avcodec_send_frame(encoder.get(), soundFrom(sample).get()) < 0) return {};
    while (avcodec_receive_packet(encoder.get(), packet.get()) == 0) {
      if (packet->pts >= kRound && track.frames.size() < kFrames) track.frames.push_back(withHeader(*packet));
      av_packet_unref(packet.get());
    }
  }
  return track;
}

}  // namespace zel::simulator

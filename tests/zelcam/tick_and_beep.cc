#include "tests/zelcam/tick_and_beep.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

#include "outputs/libav.h"
#include "simulator/scene.h"
#include "tests/simulator/lens_points.h"

namespace zel::test {
namespace {

struct Deleter {
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using Decoder = std::unique_ptr<AVCodecContext, Deleter>;
using Frame = std::unique_ptr<AVFrame, Deleter>;

constexpr int kBetween = 70;      // luma: the lamp is 116 when lit, 32 when not
constexpr float kLoud = 0.2F;     // the beep has 0.5, all else 0.02
constexpr double kSilence = 0.3;  // seconds between two beeps at least

class Observer {
 public:
  Observer(LampPlace lamp, int picturesPerSecond) : lamp_(lamp), next_(1.2 / picturesPerSecond) {}

  void see(const AVFrame& picture, double time) {
    const auto column = static_cast<int>(lamp_.x * picture.width);
    const auto row = static_cast<int>(lamp_.y * picture.height);
    const bool lit = picture.data[0][row * picture.linesize[0] + column] > kBetween;
    if (lit && wasLit_ == false && time - lastPicture_ < next_) found_.ticks.push_back(time);
    wasLit_ = lit;
    lastPicture_ = time;
    const std::uint8_t* const nadir = picture.data[2] + (picture.height / 2 - 1) * picture.linesize[2];
    found_.nadirCr = std::accumulate(nadir, nadir + picture.width / 2, 0.0) / (picture.width / 2);
  }

  void hear(const AVFrame& sound, double time) {
    const auto* const samples = reinterpret_cast<const float*>(sound.data[0]);
    for (int i = 0; i < sound.nb_samples; ++i) {
      if (std::abs(samples[i]) < kLoud) continue;
      const double now = time + static_cast<double>(i) / sound.sample_rate;
      if (lastLoud_ && now - *lastLoud_ > kSilence) found_.beeps.push_back(now);
      lastLoud_ = now;
    }
  }

  const TicksAndBeeps& found() const { return found_; }

 private:
  const LampPlace lamp_;
  const double next_;  // seconds to the next picture where none is missing
  std::optional<bool> wasLit_;
  double lastPicture_ = 0;
  std::optional<double> lastLoud_ = -1.0;
  TicksAndBeeps found_;
};

Decoder decoderFor(const AVStream& stream) {
  const AVCodec* const codec = avcodec_find_decoder(stream.codecpar->codec_id);
  Decoder decoder(avcodec_alloc_context3(codec));
  avcodec_parameters_to_context(decoder.get(), stream.codecpar);
  return avcodec_open2(decoder.get(), codec, nullptr) == 0 ? std::move(decoder) : nullptr;
}

void receive(AVCodecContext& decoder, const AVStream& stream, Observer& observer) {
  const Frame frame(av_frame_alloc());
  while (avcodec_receive_frame(&decoder, frame.get()) == 0) {
    const double time = static_cast<double>(frame->pts) * av_q2d(stream.time_base);
    stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO ? observer.see(*frame, time) : observer.hear(*frame, time);
  }
}

}  // namespace

// The lamp is on the right of the forward clock.
LampPlace lampInPanorama() { return {(180 + simulator::kLampAside) / 360, (90 - simulator::kClockLatitude) / 180}; }

LampPlace lampInFisheyes() {
  const simulator::LensOffset offset = simulator::factoryLensOffset();
  const simulator::Point at = simulator::pointOf(
      offset.lenses[0], offset.model, simulator::directionAt(simulator::kLampAside, simulator::kClockLatitude));
  return {at.x / offset.width, at.y / offset.height};
}

std::vector<double> delaysOf(const TicksAndBeeps& found) {
  std::vector<double> delays;
  for (const double tick : found.ticks)
    for (const double beep : found.beeps)
      if (beep > 1 && std::abs(tick - beep) <= 0.5) delays.push_back(1000 * (beep - tick));
  std::ranges::sort(delays);
  return delays;
}

TicksAndBeeps ticksAndBeepsIn(const std::string& film, LampPlace lamp, int picturesPerSecond) {
  AVFormatContext* opened = nullptr;
  if (avformat_open_input(&opened, film.c_str(), nullptr, nullptr) < 0) return {};
  const DemuxerPtr demuxer(opened);
  if (avformat_find_stream_info(opened, nullptr) < 0) return {};
  std::vector<Decoder> decoders;
  for (unsigned i = 0; i < demuxer->nb_streams; ++i) decoders.push_back(decoderFor(*demuxer->streams[i]));
  Observer observer(lamp, picturesPerSecond);
  const PacketPtr packet(av_packet_alloc());
  while (av_read_frame(opened, packet.get()) >= 0) {
    const auto stream = static_cast<std::size_t>(packet->stream_index);
    if (decoders[stream] && avcodec_send_packet(decoders[stream].get(), packet.get()) == 0) {
      receive(*decoders[stream], *demuxer->streams[stream], observer);
    }
    av_packet_unref(packet.get());
  }
  return observer.found();
}

}  // namespace zel::test

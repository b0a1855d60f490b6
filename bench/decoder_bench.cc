// How much the decoder adapter and the preview's road add to libavcodec, called directly on the same stream with the
// same threads. The road is the cutter, the player, the decode thread and the delegate: once with pictures enough on
// their way to keep the decoder busy, and once picture by picture, where the time of each is its delay from the arrival
// of the chunk that releases it.
//
// The stream is the simulated camera's at 3040 x 1520, two seconds of it.

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <chrono>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "bench/film.h"
#include "bench/ratio_report.h"
#include "platform/ffmpeg/h264_decoder.h"
#include "platform/ffmpeg/libav.h"
#include "platform/ports.h"
#include "tests/platform/linux/temporary_folder.h"

namespace zel::bench {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int kPictures = 60;

const Film& stream() {
  static const Film made = makeFilm(kPictures);
  return made;
}

void report(benchmark::State& state, int pictures) {
  state.counters["pictures/s"] = benchmark::Counter(static_cast<double>(pictures), benchmark::Counter::kIsRate);
}

int drain(AVCodecContext& decoder, AVFrame& frame) {
  int pictures = 0;
  while (avcodec_receive_frame(&decoder, &frame) == 0) ++pictures;
  return pictures;
}

// The limit: nothing is done with the pictures.
void libavcodec(benchmark::State& state) {
  const Film& scene = stream();
  const platform::FramePtr frame(av_frame_alloc());
  int pictures = 0;
  for (auto _ : state) {
    const platform::CodecContextPtr decoder(avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_H264)));
    decoder->thread_count = static_cast<int>(state.range(0));
    decoder->thread_type = FF_THREAD_FRAME;
    avcodec_open2(decoder.get(), nullptr, nullptr);
    for (const Bytes& picture : scene.pictures) {
      const platform::PacketPtr packet(av_packet_alloc());
      av_new_packet(packet.get(), static_cast<int>(picture.size()));
      std::memcpy(packet->data, picture.data(), picture.size());
      avcodec_send_packet(decoder.get(), packet.get());
      pictures += drain(*decoder, *frame);
    }
    avcodec_send_packet(decoder.get(), nullptr);
    pictures += drain(*decoder, *frame);
  }
  report(state, pictures);
}

void adapter(benchmark::State& state) {
  const Film& scene = stream();
  platform::LibavVideoDecoders decoders({static_cast<int>(state.range(0))});
  int pictures = 0;
  for (auto _ : state) {
    const auto decoder = decoders.create(scene.sps, scene.pps).decoder;
    for (const Bytes& unit : scene.slices)
      if (decoder->decode(unit, 0).status == platform::DecodeStatus::picture) ++pictures;
    while (decoder->flush().pixelBuffer) ++pictures;
  }
  report(state, pictures);
}

// Counts the pictures that come out.
class Arrivals final : public ZELPixelBufferDataProtocol {
 public:
  void onPixelBuffer(const platform::PixelBufferRef&, std::int64_t) override {
    const std::lock_guard lock(mutex_);
    ++count_;
    changed_.notify_one();
  }
  int count() {
    const std::lock_guard lock(mutex_);
    return count_;
  }
  void waitFor(int count) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return count_ >= count; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int count_ = 0;
};

// Hands over chunks of one picture each; each but the last releases the picture before it. most: pictures under way.
void preview(benchmark::State& state, int most) {
  const Film& scene = stream();
  const test::TemporaryFolder folder;
  std::string error;
  const auto platform = LinuxPlatform::create({.accessoriesFolder = folder.path()}, error);
  if (!platform) return state.SkipWithError(error.c_str());
  platform::LibavVideoDecoders decoders({static_cast<int>(state.range(0))});
  platform::Ports ports = platform->ports();
  ports.videoDecoders = &decoders;
  const auto arrivals = std::make_shared<Arrivals>();
  const auto player = ZELPreviewPlayer::create(ports, [] { return 192; });
  player->setPixelBufferDelegate(arrivals);
  player->appendVideoBytes(scene.pictures[0]);
  int given = 0;
  // What comes before the decode thread runs waits for what comes after.
  for (; arrivals->count() == 0; ++given) {
    player->appendVideoBytes(scene.pictures[0]);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  const int before = given;
  for (auto _ : state) {
    for (int i = 0; i < kPictures; ++i) {
      player->appendVideoBytes(scene.pictures[static_cast<std::size_t>(i + 1) % scene.pictures.size()]);
      arrivals->waitFor(++given - most + 1);
    }
  }
  arrivals->waitFor(given - most + 1);
  report(state, given - before);
}

void previewRoad(benchmark::State& state) { preview(state, static_cast<int>(state.range(0)) + 3); }
void previewDelay(benchmark::State& state) { preview(state, 1); }

BENCHMARK(previewRoad)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(previewDelay)->Arg(1)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(libavcodec)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(adapter)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zel::bench

int main(int argc, char** argv) {
  // 0.95 of the bare decoder's pictures a second.
  return zel::bench::runAndCompare(
      argc, argv,
      {{"decoder adapter / libavcodec, 1 thread", "adapter/1/real_time", "libavcodec/1/real_time", 1.053},
       {"decoder adapter / libavcodec, 2 threads", "adapter/2/real_time", "libavcodec/2/real_time", 1.053},
       {"preview / libavcodec, 1 thread", "previewRoad/1/real_time", "libavcodec/1/real_time", 1.053},
       {"preview / libavcodec, 2 threads", "previewRoad/2/real_time", "libavcodec/2/real_time", 1.053},
       {"delay of a picture / bare decode call", "previewDelay/1/real_time", "libavcodec/1/real_time", 1.1}});
}

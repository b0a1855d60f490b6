// How much the decoder adapter and the preview's road add to libavcodec, called directly on the same stream with the
// same threads. The road is the cutter, the player, the decode thread and the delegate: once with pictures enough on
// their way to keep the decoder busy, and once at a camera's pace, where the time of each picture is its delay from the
// arrival of the chunk that releases it.
//
// The stream is the simulated camera's at 3040 x 1520, two seconds of it.

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
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

// The limit: nothing is done with the pictures; the latest so many are kept, as a preview keeps five for polling.
class BareDecoder {
 public:
  explicit BareDecoder(int threads, std::size_t kept = 0)
      : decoder_(avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_H264))), mostKept_(kept) {
    decoder_->thread_count = threads;
    decoder_->thread_type = FF_THREAD_FRAME;
    avcodec_open2(decoder_.get(), nullptr, nullptr);
  }

  // How many pictures have come out.
  int decode(const Bytes& picture) {
    const platform::PacketPtr packet(av_packet_alloc());
    av_new_packet(packet.get(), static_cast<int>(picture.size()));
    std::memcpy(packet->data, picture.data(), picture.size());
    avcodec_send_packet(decoder_.get(), packet.get());
    return drain();
  }
  int end() {
    avcodec_send_packet(decoder_.get(), nullptr);
    return drain();
  }

 private:
  int drain() {
    int pictures = 0;
    while (true) {
      platform::FramePtr frame(av_frame_alloc());
      if (avcodec_receive_frame(decoder_.get(), frame.get()) != 0) return pictures;
      ++pictures;
      kept_.push_back(std::move(frame));
      if (kept_.size() > mostKept_) kept_.pop_front();
    }
  }

  const platform::CodecContextPtr decoder_;
  const std::size_t mostKept_;
  std::deque<platform::FramePtr> kept_;
};

void libavcodec(benchmark::State& state) {
  const Film& scene = stream();
  int pictures = 0;
  for (auto _ : state) {
    BareDecoder decoder(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1)));
    for (const Bytes& picture : scene.pictures) pictures += decoder.decode(picture);
    pictures += decoder.end();
  }
  report(state, pictures);
}

// Calls once an interval; the iteration's time is that which the calls take.
template <class Call>
void pace(benchmark::State& state, const Call& call) {
  using Clock = std::chrono::steady_clock;
  constexpr auto kInterval = std::chrono::milliseconds(20);
  std::chrono::duration<double> spent{};
  auto next = Clock::now();
  for (int i = 0; i < kPictures; ++i) {
    std::this_thread::sleep_until(next += kInterval);
    const auto start = Clock::now();
    call(i);
    spent += Clock::now() - start;
  }
  state.SetIterationTime(spent.count());
}

void bareCall(benchmark::State& state) {
  const Film& scene = stream();
  BareDecoder decoder(1, static_cast<std::size_t>(state.range(0)));
  int pictures = 0;
  for (auto _ : state)
    pace(state, [&](int i) { pictures += decoder.decode(scene.pictures[static_cast<std::size_t>(i)]); });
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

// The road, once its decode thread runs.
class Preview {
 public:
  explicit Preview(int threads) : decoders_({threads}) {
    std::string error;
    host_ = LinuxPlatform::create({.accessoriesFolder = folder_.path()}, error);
    if (!host_) std::fprintf(stderr, "%s\n", error.c_str()), std::abort();
    platform::Ports ports = host_->ports();
    ports.videoDecoders = &decoders_;
    player_ = ZELPreviewPlayer::create(ports, [] { return 192; });
    player_->setPixelBufferDelegate(arrivals_);
    player_->appendVideoBytes(stream().pictures[0]);
    // What comes before the decode thread runs waits for what comes after.
    while (arrivals_->count() == 0) {
      append(0);
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    waitForAllBut(2 * threads);  // several threads hold some back
  }

  // A chunk of one picture: it releases the picture before it.
  void append(int picture) {
    player_->appendVideoBytes(stream().pictures[static_cast<std::size_t>(picture)]);
    ++given_;
  }
  // Until all but so many have come out.
  void waitForAllBut(int most) { arrivals_->waitFor(given_ - most); }

 private:
  const test::TemporaryFolder folder_;
  platform::LibavVideoDecoders decoders_;
  std::unique_ptr<LinuxPlatform> host_;
  const std::shared_ptr<Arrivals> arrivals_ = std::make_shared<Arrivals>();
  std::shared_ptr<ZELPreviewPlayer> player_;
  int given_ = 0;
};

void previewRoad(benchmark::State& state) {
  const int threads = static_cast<int>(state.range(0)), underWay = threads + 2;
  Preview preview(threads);
  for (auto _ : state) {
    for (int i = 0; i < kPictures; ++i) {
      preview.append((i + 1) % kPictures);
      preview.waitForAllBut(underWay);
    }
  }
  report(state, kPictures * static_cast<int>(state.iterations()));
}

void previewDelay(benchmark::State& state) {
  Preview preview(1);
  for (auto _ : state) {
    pace(state, [&](int i) {
      preview.append((i + 1) % kPictures);
      preview.waitForAllBut(0);
    });
  }
  report(state, kPictures * static_cast<int>(state.iterations()));
}

BENCHMARK(previewRoad)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(previewDelay)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(bareCall)->Arg(0)->Arg(5)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(libavcodec)->ArgsProduct({{1, 2}, {0, 5}})->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(adapter)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zel::bench

int main(int argc, char** argv) {
  // 0.95 of the bare decoder's pictures a second.
  return zel::bench::runAndCompare(
      argc, argv,
      {{"decoder adapter / libavcodec, 1 thread", "adapter/1/real_time", "libavcodec/1/0/real_time", 1.053},
       {"decoder adapter / libavcodec, 2 threads", "adapter/2/real_time", "libavcodec/2/0/real_time", 1.053},
       {"preview / libavcodec, 1 thread", "previewRoad/1/real_time", "libavcodec/1/0/real_time", 1.053},
       {"preview / libavcodec, 2 threads", "previewRoad/2/real_time", "libavcodec/2/0/real_time", 1.053},
       {"preview / libavcodec that keeps 5, 1 thread", "previewRoad/1/real_time", "libavcodec/1/5/real_time", 1.053},
       {"preview / libavcodec that keeps 5, 2 threads", "previewRoad/2/real_time", "libavcodec/2/5/real_time", 1.053},
       {"delay of a picture / bare decode call", "previewDelay/manual_time", "bareCall/0/manual_time", 1.1},
       {"delay of a picture / call that keeps 5", "previewDelay/manual_time", "bareCall/5/manual_time", 1.1}});
}

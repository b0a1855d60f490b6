// How much the decoder adapter and the preview's road add to libavcodec, called directly on the same stream with the
// same threads. The road is the cutter, the player, the decode thread and the delegate: once with pictures enough on
// their way to keep the decoder busy, and once at a slow camera's pace, where each picture is timed from the arrival of
// the chunk that releases it.
//
//   decoder_bench [ROUNDS]      9 rounds; the table shows the medians
//
// The contestants take turns, a second of the stream each, and are compared turn by turn: on a shared machine the speed
// changes from one second to the next by more than what is measured.

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <ZELTarkaSDK/platform/ports.h>

#include "bench/film.h"
#include "bench/ratios.h"
#include "platform/ffmpeg/h264_decoder.h"
#include "platform/ffmpeg/libav.h"
#include "tests/platform/linux/temporary_folder.h"

namespace zel::bench {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kPictures = 60;
constexpr std::size_t kSecond = 30;  // pictures; each second begins with a key picture

const Film& stream() {
  static const Film made = makeFilm(kPictures);
  return made;
}

// Somebody who decodes the film.
class Contestant {
 public:
  virtual ~Contestant() = default;
  virtual void decode(std::size_t picture) = 0;
  // Until no more pictures come by themselves.
  virtual void waitForPictures() {}
};

// The limit: nothing is done with the pictures; the latest so many are kept, as a preview keeps five for polling.
class BareDecoder final : public Contestant {
 public:
  explicit BareDecoder(int threads, std::size_t kept = 0)
      : decoder_(avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_H264))), mostKept_(kept) {
    decoder_->thread_count = threads;
    decoder_->thread_type = FF_THREAD_FRAME;
    avcodec_open2(decoder_.get(), nullptr, nullptr);
  }

  void decode(std::size_t picture) override {
    const Bytes& bytes = stream().pictures[picture];
    const platform::PacketPtr packet(av_packet_alloc());
    av_new_packet(packet.get(), static_cast<int>(bytes.size()));
    std::memcpy(packet->data, bytes.data(), bytes.size());
    avcodec_send_packet(decoder_.get(), packet.get());
    while (true) {
      platform::FramePtr frame(av_frame_alloc());
      if (avcodec_receive_frame(decoder_.get(), frame.get()) != 0) return;
      kept_.push_back(std::move(frame));
      if (kept_.size() > mostKept_) kept_.pop_front();
    }
  }

 private:
  const platform::CodecContextPtr decoder_;
  const std::size_t mostKept_;
  std::deque<platform::FramePtr> kept_;
};

// The adapter alone; its pictures are let go at once.
class Adapter final : public Contestant {
 public:
  explicit Adapter(int threads)
      : decoder_(platform::LibavVideoDecoders({threads}).create(stream().sps, stream().pps).decoder) {}

  void decode(std::size_t picture) override { decoder_->decode(stream().slices[picture], 0); }

 private:
  const std::unique_ptr<platform::VideoDecoder> decoder_;
};

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

// The road.
class Preview final : public Contestant {
 public:
  // underWay: pictures, at most.
  explicit Preview(int threads, int underWay)
      : heldBack_(threads == 1 ? 0 : threads), underWay_(heldBack_ + underWay), decoders_({threads}) {
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
  }

  // A chunk of one picture: it releases the picture before it.
  void decode(std::size_t picture) override {
    append(picture);
    arrivals_->waitFor(given_ - underWay_);
  }
  void waitForPictures() override { arrivals_->waitFor(given_ - heldBack_); }

 private:
  void append(std::size_t picture) {
    player_->appendVideoBytes(stream().pictures[picture]);
    ++given_;
  }

  const int heldBack_;  // several threads hold back a picture each
  const int underWay_;
  const test::TemporaryFolder folder_;
  platform::LibavVideoDecoders decoders_;
  std::unique_ptr<LinuxPlatform> host_;
  const std::shared_ptr<Arrivals> arrivals_ = std::make_shared<Arrivals>();
  std::shared_ptr<ZELPreviewPlayer> player_;
  int given_ = 0;
};

using Entry = std::function<std::unique_ptr<Contestant>()>;
using Times = std::vector<double>;  // milliseconds

double timeOf(const std::function<void()>& call) {
  const auto start = Clock::now();
  call();
  return 1e3 * std::chrono::duration<double>(Clock::now() - start).count();
}

double ratio(const Times& measured, const Times& against) {
  std::vector<double> ratios;
  for (std::size_t i = 0; i < measured.size(); ++i) ratios.push_back(measured[i] / against[i]);
  return median(std::move(ratios));
}

// The film's second second, by one that has just decoded the first.
double turnOf(const Entry& entry) {
  const auto contestant = entry();
  for (std::size_t i = 0; i < kSecond; ++i) contestant->decode(i);
  contestant->waitForPictures();
  std::this_thread::sleep_for(std::chrono::milliseconds(100));  // threads end what they still do
  const double time = timeOf([&] {
    for (std::size_t i = kSecond; i < kPictures; ++i) contestant->decode(i);
    contestant->waitForPictures();
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  return time;
}

// Each one's times. A round begins with another one each time.
std::vector<Times> takeTurns(const std::vector<Entry>& entries, int rounds) {
  std::vector<Times> times(entries.size());
  for (std::size_t first = 0; first < static_cast<std::size_t>(rounds); ++first) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const std::size_t turn = (first + i) % entries.size();
      times[turn].push_back(turnOf(entries[turn]));
    }
  }
  return times;
}

void measureRate(int threads, int rounds) {
  constexpr int kUnderWay = 3;  // that the decode thread never waits for the next one
  const auto times = takeTurns(
      {[=] { return std::make_unique<BareDecoder>(threads); },
       [=] { return std::make_unique<BareDecoder>(threads, 5); }, [=] { return std::make_unique<Adapter>(threads); },
       [=] { return std::make_unique<Preview>(threads, kUnderWay); }},
      rounds);
  const std::string with = threads == 1 ? ", 1 thread" : ", " + std::to_string(threads) + " threads";
  std::printf("libavcodec, ms a picture%s: %.1f\n", with.c_str(), median(times[0]) / kSecond);
  // 0.95 of the bare decoder's pictures a second.
  printRatio("decoder adapter / libavcodec" + with, ratio(times[2], times[0]), 1.053);
  printRatio("preview / libavcodec" + with, ratio(times[3], times[0]), 1.053);
  printRatio("preview / libavcodec whose caller keeps 5 pictures" + with, ratio(times[3], times[1]), 0);
}

// At a steady pace; each picture is decoded by all.
void measureDelay(int rounds) {
  constexpr auto kInterval = std::chrono::milliseconds(60);
  BareDecoder bare(1), keeping(1, 5);
  Preview preview(1, 0);
  const std::array<Contestant*, 3> all{&bare, &keeping, &preview};
  std::array<Times, all.size()> times;
  auto next = Clock::now();
  for (std::size_t picture = 0; picture < static_cast<std::size_t>(rounds) * kSecond / 2; ++picture) {
    for (std::size_t i = 0; i < all.size(); ++i) {
      std::this_thread::sleep_until(next += kInterval);
      times[i].push_back(timeOf([&] { all[i]->decode(picture % kPictures); }));
    }
  }
  printRatio("delay of a picture / bare decode call", ratio(times[2], times[0]), 1.1);
  printRatio("delay of a picture / call whose caller keeps 5 pictures", ratio(times[2], times[1]), 0);
}

}  // namespace
}  // namespace zel::bench

int main(int argc, char** argv) {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  zel::bench::answerHelp(
      argc, argv,
      "usage: decoder_bench [ROUNDS]\n\nHow fast pictures are decoded, and how late, beside libavcodec alone, in "
      "that many rounds (9).");
  const int rounds = zel::bench::roundsIn(argc, argv, 9);
  if (rounds < 1) return std::fputs("usage: decoder_bench [ROUNDS]\n", stderr), 2;
  zel::bench::measureRate(1, rounds);
  zel::bench::measureRate(2, rounds);
  zel::bench::measureDelay(rounds);
  return 0;
}

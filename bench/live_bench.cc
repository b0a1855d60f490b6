// The whole live pipeline, from the camera's socket to an MP4 file, beside one ffmpeg command that decodes, stitches
// with v360 (linear) and encodes with the same settings of x264; its delay beside the sum of its bare stages; and what
// each stage costs. The stream is the simulated camera's at 3040 x 1520.
//
//   live_bench [ROUNDS]      3 rounds; the table shows the medians

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELLiveDataSourceProtocol.h>

extern "C" {
#include <libavutil/log.h>
}

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <ZELTarkaSDK/Outputs.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "bench/child_process.h"
#include "bench/film.h"
#include "bench/live_stages.h"
#include "bench/media_clock.h"
#include "bench/ratios.h"
#include "outputs/stream_writer.h"
#include "platform/ffmpeg/h264_decoder.h"
#include "platform/ffmpeg/h264_encoder.h"
#include "platform/render/stitching_library.h"
#include "simulator/camera_simulator.h"
#include "tests/platform/linux/temporary_folder.h"

namespace zel::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kLoop = 60;       // pictures of the film
constexpr int kWarm = 60;       // before the clock runs
constexpr int kMeasured = 180;  // while it runs

struct Size {
  int width, bitrate;
};
constexpr Size kSizes[] = {{3040, 20'000'000}, {1920, 8'000'000}};
// Between pictures where the delay is measured: two processors are done with one before the next comes.
constexpr auto kInterval = std::chrono::milliseconds(120);

// Milliseconds a picture.
struct Cost {
  double time = 0, processor = 0;
};

double seconds(Clock::duration duration) { return std::chrono::duration<double>(duration).count(); }

// Takes the pipeline's output to a file.
class Recorder final : public ZELLiveDataSourceProtocol {
 public:
  explicit Recorder(const std::string& file)
      : outputs_([](const std::string& line) { std::puts(line.c_str()); }), writer_(outputs_, std::nullopt, [] {}) {
    outputs_.add(*parseOutputAddress(file));
    writer_.beginRun(true);
  }
  ~Recorder() override { outputs_.finish(); }

  void sourceOnError(const ZELError& error) override { std::puts(error.description.value_or("failed").c_str()); }
  void sourceOnH264Header(Bytes sps, Bytes pps) override { writer_.onParameterSets(sps, pps); }
  void sourceOnH264Nalu(Bytes nalu, bool key, std::int64_t time) override {
    writer_.onPicture(nalu, key, time, Clock::now());
    const std::lock_guard lock(mutex_);
    ++pictures_;
    newest_ = Clock::now();
    changed_.notify_all();
  }
  void sourceOnAACHeader(Bytes header) override { writer_.onAudioConfig(header); }
  void sourceOnAACData(Bytes data, std::int64_t time) override { writer_.onAudio(data, time); }

  // Pictures that have been handed to the output.
  std::uint64_t pictures() {
    const std::lock_guard lock(mutex_);
    return pictures_;
  }
  // When the picture of that number was, or the next one after it.
  Clock::time_point waitForPicture(std::uint64_t number) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return pictures_ > number; });
    return newest_;
  }

 private:
  Outputs outputs_;
  StreamWriter writer_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::uint64_t pictures_ = 0;
  Clock::time_point newest_;
};

// The pipeline from the camera's socket to an MP4 file, once its first pictures have come.
class Pipeline {
 public:
  // underWay: pictures in it at a time.
  // Units:  pixels, bits a second.
  Pipeline(const std::string& film, const Size& size, std::uint64_t underWay, int decoderThreads)
      : clock_(underWay), decoders_({decoderThreads}) {
    simulator::SimulatorOptions camera;
    camera.accessoriesFolder = folder_.file("bus");
    camera.identity.firmware = 189;  // whose host counts the time by the pictures, since the clocks run apart here
    camera.resolution = kFilmResolution;
    camera.video = film;
    camera.mediaSeconds = [this] { return clock_.now(); };
    simulator_ = std::make_unique<simulator::CameraSimulator>(std::move(camera));
    std::string error;
    if (simulator_->start(error)) host_ = LinuxPlatform::create({.accessoriesFolder = folder_.file("bus")}, error);
    if (!host_) std::fprintf(stderr, "%s\n", error.c_str()), std::abort();
    start(size);
  }
  ~Pipeline() {
    clock_.follow(nullptr);
    source_->stopLiveData();
  }
  Pipeline(const Pipeline&) = delete;
  Pipeline& operator=(const Pipeline&) = delete;

  // What a picture costs.
  Cost cost() {
    const std::uint64_t before = source_->statistics().encoded, lostBefore = lost();
    const auto start = Clock::now();
    const double processor = ownProcessorSeconds();
    wait([&] { return source_->statistics().encoded >= before + kMeasured; });
    const double pictures = static_cast<double>(source_->statistics().encoded - before);
    const Cost cost{1e3 * seconds(Clock::now() - start) / pictures,
                    1e3 * (ownProcessorSeconds() - processor) / pictures};
    if (lost() != lostBefore)
      std::printf("%llu pictures were lost on the way\n", static_cast<unsigned long long>(lost() - lostBefore));
    return cost;
  }

  // No more comes from the camera.
  void stopCamera() {
    clock_.stop();
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
  }
  // Takes a chunk; until the packet of the picture that it releases has been handed to the output.
  void run(const Film::Bytes& chunk) {
    const std::uint64_t number = recorder_->pictures();
    source_->player()->appendVideoBytes(chunk);
    recorder_->waitForPicture(number);
  }

 private:
  void start(const Size& size) {
    platform::Ports ports = host_->ports();
    ports.videoDecoders = &decoders_;
    ports.videoEncoders = &encoders_;
    ports.mediaLibrary = &library_;
    stack_ = std::make_unique<CameraStack>(ports);
    stack_->accessory().openCamera();
    wait([&] { return stack_->accessory().linkStatus() == LinkStatus::flowing; });
    source_ = ZELLiveDataSource::initWitCameraResolution(
        *stack_, kFilmResolution, static_cast<std::uint64_t>(size.width), static_cast<std::uint64_t>(size.width / 2),
        static_cast<std::uint64_t>(size.bitrate));
    source_->setDataSourceDelegate(recorder_);
    source_->startLiveData();
    clock_.follow(source_);
    wait([&] { return source_->statistics().encoded >= kWarm; });
  }

  // Without the simulated camera's.
  double ownProcessorSeconds() { return processorSeconds() - clock_.processorSeconds(); }

  std::uint64_t lost() const { return MediaClock::finished(*source_) - source_->statistics().encoded; }

  void wait(const std::function<bool()>& done) {
    while (!done()) host_->runMainQueueFor(0.01);
  }

  const test::TemporaryFolder folder_;
  MediaClock clock_;
  platform::LibavVideoDecoders decoders_;
  platform::LibavVideoEncoders encoders_;
  render::StitchingLibrary library_{[](const std::string& fault) { std::puts(fault.c_str()); }};
  std::unique_ptr<simulator::CameraSimulator> simulator_;
  std::unique_ptr<LinuxPlatform> host_;
  std::unique_ptr<CameraStack> stack_;
  const std::shared_ptr<Recorder> recorder_ = std::make_shared<Recorder>(folder_.file("live.mp4"));
  std::shared_ptr<ZELLiveDataSource> source_;
};

// The time of a picture through the pipeline and through the bare stages, which take turns at a steady pace; as a
// multiple of theirs.
double measureDelay(const Film& scene, const std::string& film, const Size& size) {
  Pipeline pipeline(film, size, 4, 1);
  BareStages stages(scene, size.width, size.bitrate);
  pipeline.stopCamera();
  pipeline.run(scene.pictures[0]);
  std::vector<double> ratios;
  auto next = Clock::now();
  const auto timeOf = [&](const std::function<void()>& call) {
    std::this_thread::sleep_until(next += kInterval);
    const auto start = Clock::now();
    call();
    return seconds(Clock::now() - start);
  };
  for (std::size_t i = 0; i < scene.pictures.size(); ++i) {
    const double bare = timeOf([&] { stages.run(i); });
    const double whole = timeOf([&] { pipeline.run(scene.pictures[(i + 1) % scene.pictures.size()]); });
    if (i > 0) ratios.push_back(whole / bare);  // the first makes the map
  }
  return median(ratios);
}

Cost runPipeline(const std::string& film, const Size& size, std::uint64_t underWay, int decoderThreads) {
  return Pipeline(film, size, underWay, decoderThreads).cost();
}

// What one picture more costs the ffmpeg command: the difference between a long and a short stream.
Cost runFfmpeg(const std::string& shortFilm, const std::string& longFilm, const Size& size, int pictures) {
  const test::TemporaryFolder folder;
  const std::string bitrate = std::to_string(size.bitrate);
  const auto convert = [&](const std::string& film) {
    return runChild({"ffmpeg",
                     "-nostdin",
                     "-v",
                     "error",
                     "-y",
                     "-framerate",
                     "30",
                     "-f",
                     "h264",
                     "-i",
                     film,
                     "-vf",
                     "v360=dfisheye:e:ih_fov=195:iv_fov=195:interp=linear:w=" + std::to_string(size.width) +
                         ":h=" + std::to_string(size.width / 2),
                     "-c:v",
                     "libx264",
                     "-preset",
                     "ultrafast",
                     "-tune",
                     "zerolatency",
                     "-b:v",
                     bitrate,
                     "-maxrate",
                     bitrate,
                     "-bufsize",
                     bitrate,
                     "-g",
                     "30",
                     folder.file("out.mp4")});
  };
  const ChildCost little = convert(shortFilm), much = convert(longFilm);
  return {1e3 * (much.seconds - little.seconds) / pictures,
          1e3 * (much.processorSeconds - little.processorSeconds) / pictures};
}

struct Round {
  Cost ours, oursWithTwo, ffmpeg;
  double delay = 0;  // as a multiple of the bare stages
};

Round measure(const Size& size, const std::string& film, const std::string& longFilm, const Film& scene) {
  Round round;
  round.ours = runPipeline(film, size, 6, 1);
  round.ffmpeg = runFfmpeg(film, longFilm, size, kMeasured);
  round.oursWithTwo = runPipeline(film, size, 7, 2);
  round.delay = measureDelay(scene, film, size);
  const StageCosts stages = measureStages(scene, size.width, size.bitrate);
  std::printf(
      "%d wide, ms a picture: pipeline %.1f (processor %.1f), 2 decoder threads %.1f (%.1f), ffmpeg %.1f (%.1f); "
      "delay / bare stages %.2f; decode %.1f, stitch %.1f, encode %.1f\n",
      size.width, round.ours.time, round.ours.processor, round.oursWithTwo.time, round.oursWithTwo.processor,
      round.ffmpeg.time, round.ffmpeg.processor, round.delay, stages.decode, stages.stitch, stages.encode);
  return round;
}

void summarise(const Size& size, const std::vector<Round>& rounds) {
  const auto ratio = [&](const std::function<double(const Round&)>& of) {
    std::vector<double> values;
    for (const Round& round : rounds) values.push_back(of(round));
    return median(values);
  };
  const bool isLarge = size.width > 2000;
  std::printf("\nto %d x %d, median of the rounds\n", size.width, size.width / 2);
  printRatio("time a picture / ffmpeg", ratio([](const Round& r) { return r.ours.time / r.ffmpeg.time; }),
             isLarge ? 0.70 : 0.92);
  printRatio("the same with 2 decoder threads",
             ratio([](const Round& r) { return r.oursWithTwo.time / r.ffmpeg.time; }), isLarge ? 0.70 : 0.92);
  printRatio("processor time a picture / ffmpeg",
             ratio([](const Round& r) { return r.ours.processor / r.ffmpeg.processor; }), 0.80);
  printRatio("delay of a picture / sum of the bare stages", ratio([](const Round& r) { return r.delay; }), 1.05);
}

void write(const std::string& file, const Film& film, int times) {
  std::ofstream stream(file, std::ios::binary);
  for (int i = 0; i < times; ++i) {
    for (const Film::Bytes& picture : film.pictures)
      stream.write(reinterpret_cast<const char*>(picture.data()), static_cast<std::streamsize>(picture.size()));
  }
}

int run(int rounds) {
  const test::TemporaryFolder folder;
  const std::string film = folder.file("film.h264"), longFilm = folder.file("long.h264");
  const Film scene = makeFilm(kLoop);
  write(film, scene, 1);
  write(longFilm, scene, 1 + kMeasured / kLoop);
  for (const Size& size : kSizes) {
    std::vector<Round> results;
    for (int i = 0; i < rounds; ++i) results.push_back(measure(size, film, longFilm, scene));
    summarise(size, results);
  }
  return 0;
}

}  // namespace
}  // namespace zel::bench

int main(int argc, char** argv) {
  av_log_set_level(AV_LOG_QUIET);
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  zel::bench::answerHelp(
      argc, argv,
      "usage: live_bench [ROUNDS]\n\nWhat a live stream costs, and how late it is, beside its stages alone, in "
      "that many rounds (3).");
  const int rounds = zel::bench::roundsIn(argc, argv, 3);
  if (rounds < 1) return std::fputs("usage: live_bench [ROUNDS]\n", stderr), 2;
  return zel::bench::run(rounds);
}

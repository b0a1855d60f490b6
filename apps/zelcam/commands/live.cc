#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/EncodedStream.h>
#include <ZELTarkaSDK/Outputs.h>
#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

extern "C" {
#include <libavutil/log.h>
}

#include <fmt/format.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <ZELTarkaSDK/platform/application_events.h>
#include <ZELTarkaSDK/platform/run_loop.h>

#include "apps/zelcam/command_line/live_options.h"
#include "apps/zelcam/commands/live_duration.h"
#include "apps/zelcam/commands/live_figures.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"
#include "apps/zelcam/link/bus.h"
#include "apps/zelcam/link/camera_link.h"

namespace zel::app {
namespace {

using Clock = std::chrono::steady_clock;

constexpr double kProgressPeriod = 0.5;  // seconds between two lines of progress

void addUsage(LiveFigures& figures) {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  figures.cpuSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
  figures.peakMemory = std::int64_t{usage.ru_maxrss} * 1024;
}

// Stops the stream where nobody has: when memory ends, it must not outlive the connection that it comes from.
class StreamEnd {
 public:
  explicit StreamEnd(EncodedStream& stream) : stream_(stream) {}
  ~StreamEnd() { stream_.stop(); }
  StreamEnd(const StreamEnd&) = delete;
  StreamEnd& operator=(const StreamEnd&) = delete;

 private:
  EncodedStream& stream_;
};

// The end of one connection of the camera.
enum class RunEnd { complete, interrupted, lost, noPicture, failed, outputsFailed };

// One run of the command.
class Live {
 public:
  Live(Bus& bus, const Settings& settings, const LiveOptions& options)
      : bus_(bus),
        settings_(settings),
        options_(options),
        duration_(options.duration),
        outputs_([this](const std::string& line) { tell(line); }),
        stream_(outputs_, streamOptions()) {
    for (const OutputAddress& address : options.outputs) outputs_.add(address);
  }

  int run() {
    background_ = observe(platform::kApplicationDidEnterBackgroundNotification, true);
    active_ = observe(platform::kApplicationDidBecomeActiveNotification, false);
    int status = stream(settings_);
    while (const auto patience = patienceAfter(status)) status = reconnect(*patience);
    outputs_.finish();
    endProgress();
    if (!wasThere_) return status;
    summarise();
    return statusWithOutputs(status);
  }

 private:
  EncodedStream::Options streamOptions() {
    EncodedStream::Options options;
    if (options_.duration) options.length = static_cast<std::int64_t>(*options_.duration * 1e6);
    options.changed = [this] { bus_.platform().stopMainQueue(); };
    return options;
  }

  std::unique_ptr<platform::NotificationObservation> observe(std::string_view name, bool background) {
    return bus_.platform().ports().notifications.observe(name, [this, background](const platform::Notification&) {
      inBackground_ = background;
      if (settings_.verbose) tell(background ? "in the background: the camera rests" : "active again");
    });
  }

  // How long to wait for the camera after a connection that ended with that status; nothing to give up. An attached
  // camera that only lost the connection is always waited for.
  std::optional<double> patienceAfter(int status) const {
    if (status != kNoCamera || !lost_) return std::nullopt;
    return reopened_ && !options_.reconnect ? settings_.timeout : options_.reconnect;
  }

  int reconnect(double patience) {
    lost_ = reopened_ = false;
    Settings again = settings_;
    again.camera = serial_;
    again.timeout = std::min(patience, duration_.left().value_or(patience));
    tell(fmt::format("the camera was lost; waiting up to {:.6g} s for {}", again.timeout, serial_));
    return stream(again);
  }

  // Runs one connection, from waiting for the camera to its end. Returns the exit status.
  int stream(const Settings& toOpen) {
    CameraLink link(bus_, toOpen);
    if (const int status = link.open(); status != kDone) return status;
    if (const auto info = link.stack().accessory().accessoryInfo()) serial_ = info->serialNumber();
    if (!wasThere_) start_ = Clock::now();
    if (std::exchange(wasThere_, true)) tell("the camera is there again");
    const StreamEnd streamEnd(stream_);
    startStream(link);
    const auto tick = link.platform().ports().threads.currentRunLoop().scheduleRepeating(kProgressPeriod, [&] {
      duration_.note(Clock::now(), stream_.statistics().newestVideo);
      report();
      link.wake();
    });
    const RunEnd end = waitForEnd(link);
    reopened_ = link.wasReopened();
    const std::optional<std::string> failure = stream_.failure();
    stream_.stop();
    letCameraKnow(link, end);
    return statusOf(end, failure);
  }

  void startStream(CameraLink& link) {
    if (!options_.stitch) return stream_.startCamera(link.stack(), options_.resolution);
    stream_.startStitched(link.stack(), options_.resolution, options_.stitched);
  }

  // Pictures must keep arriving, except in the background: a timeout without one ends the connection. Until then a
  // silent camera may continue, unless reconnecting is possible.
  RunEnd waitForEnd(CameraLink& link) {
    const std::uint64_t first = stream_.statistics().pictures;
    const auto isOver = [&] {
      return stream_.statistics().complete || duration_.isOver() || stream_.failure() || outputs_.haveAllFailed() ||
             link.wasReopened();
    };
    const auto bears = [&](LinkLoss loss) {
      return loss == LinkLoss::silent && (inBackground_ || !options_.reconnect);
    };
    while (true) {
      const std::uint64_t before = stream_.statistics().pictures;
      const Waited end = link.waitFor(isOver, settings_.timeout, bears);
      if (end == Waited::interrupted) return RunEnd::interrupted;
      if (end == Waited::lost) return RunEnd::lost;
      if (end == Waited::timeOut && (inBackground_ || stream_.statistics().pictures != before)) continue;
      // Reconnects only after a connection that has delivered pictures.
      if (end == Waited::timeOut) return options_.reconnect && before != first ? RunEnd::lost : RunEnd::noPicture;
      return whyOver(link);
    }
  }

  RunEnd whyOver(CameraLink& link) const {
    if (stream_.statistics().complete || duration_.isOver()) return RunEnd::complete;
    if (outputs_.haveAllFailed()) return RunEnd::outputsFailed;
    const bool forWantOfACamera = link.wasReopened() || (stream_.failure() && link.isLost());
    return forWantOfACamera ? RunEnd::lost : RunEnd::failed;
  }

  // The commands that switch the camera's streams off are queued: the reply to a further request shows that they have
  // arrived.
  void letCameraKnow(CameraLink& link, RunEnd end) const {
    if (end == RunEnd::lost) return;
    constexpr double kLongest = 1;
    const auto answered = std::make_shared<std::atomic<bool>>(false);
    link.stack().ucd().msgReqSwitchAudioStreamType(kAudioStreamOff, [answered](const auto&) { answered->store(true); });
    link.platform().runMainQueueFor(0);
    const auto until = Clock::now() + std::chrono::duration<double>(kLongest);
    while (!answered->load() && link.stack().accessory().linkStatus() != LinkStatus::closed && Clock::now() < until) {
      link.platform().runMainQueueFor(0.02);
    }
  }

  int statusOf(RunEnd end, const std::optional<std::string>& failure) {
    switch (end) {
      case RunEnd::complete:
        tellWhereItStood();
        return kDone;
      case RunEnd::interrupted:
        return options_.duration || stream_.statistics().pictures == 0 ? kInterrupted : kDone;
      case RunEnd::lost:
        lost_ = true;
        if (!patienceAfter(kNoCamera)) sayFailure("live: the camera was lost", zelOSStatusError(kZELErrorNotConnected));
        return kNoCamera;
      case RunEnd::noPicture:
        sayFailure(fmt::format("live: no picture came within {} s", settings_.timeout));
        return kNoCamera;
      case RunEnd::failed:
        sayFailure("live: " + failure.value_or("failed") + adviceFor(failure));
        return kRefused;
      case RunEnd::outputsFailed:
        rememberFaultOfOutputs();
        sayFailure("live: no output is left");
        return kRefused;
    }
    return kRefused;
  }

  static std::string adviceFor(const std::optional<std::string>& failure) {
    return failure && failure->ends_with("may be more than it takes") ? ": try a smaller --size" : "";
  }

  void tellWhereItStood() const {
    if (duration_.stoodStill() == 0) return;
    tell(fmt::format("the stream stood still for {:.1f} s, which count", duration_.stoodStill()));
  }

  // Faults were printed when they occurred. Returns whether there is one.
  bool rememberFaultOfOutputs() const {
    const auto reports = outputs_.reports();
    const auto failed = std::ranges::find_if(reports, [](const auto& report) { return report.fault.has_value(); });
    if (failed == reports.end()) return false;
    rememberFailure("live: " + *failed->fault);
    return true;
  }

  int statusWithOutputs(int status) const { return status == kDone && rememberFaultOfOutputs() ? kRefused : status; }

  LiveFigures figures() const {
    LiveFigures all{stream_.statistics(), outputs_.reports()};
    all.seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    addUsage(all);
    return all;
  }

  // Standard output may carry a stream.
  void summarise() const {
    const LiveFigures all = figures();
    if (settings_.json) return printJson(jsonOf(all));
    for (const std::string& line : linesOf(all)) printLine(line);
  }

  void report() {
    if (::isatty(STDERR_FILENO) == 0) return;
    showProgress(progressOf(figures()));
    showsProgress_ = true;
  }
  void endProgress() {
    if (std::exchange(showsProgress_, false)) say("");
  }

  // Thread: any thread.
  void tell(const std::string& line) const { say("zelcam: live: " + line); }

  Bus& bus_;
  const Settings& settings_;
  const LiveOptions& options_;
  Clock::time_point start_ = Clock::now();
  std::string serial_;
  bool wasThere_ = false, lost_ = false, reopened_ = false, inBackground_ = false, showsProgress_ = false;
  LiveDuration duration_;
  Outputs outputs_;
  EncodedStream stream_;
  std::unique_ptr<platform::NotificationObservation> background_, active_;
};

}  // namespace

int runLive(const Invocation& invocation) {
  std::string complaint;
  const auto options = liveOptionsIn(invocation.values, complaint);
  if (!options) return complain(kWrongUsage, "live", complaint);
  if (options->usesStandardOutput()) leaveStandardOutput();
  av_log_set_level(AV_LOG_QUIET);  // zelcam prints its own messages
  turnSuspensionIntoEvents();
  Bus bus(invocation.settings, options->decoderThreads);
  if (!bus.isThere()) return kNoCamera;
  if (!options->stitch) bus.decodeNothing();
  Live live(bus, invocation.settings, *options);
  return live.run();
}

}  // namespace zel::app

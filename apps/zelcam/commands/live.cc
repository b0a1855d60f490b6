#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>

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
#include <ZELTarkaSDK/platform/notification_center.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "apps/zelcam/command_line/live_options.h"
#include "apps/zelcam/commands/live_duration.h"
#include "apps/zelcam/commands/live_figures.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"
#include "apps/zelcam/link/command_camera.h"
#include "apps/zelcam/link/loss_watch.h"

namespace zel::app {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kProgressPeriod{500};  // between two lines of progress
constexpr double kLookPeriod = 0.1;                        // seconds between two looks at the stream

void addUsage(LiveFigures& figures) {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  figures.cpuSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
  figures.peakMemory = std::int64_t{usage.ru_maxrss} * 1024;
}

// The end of one connection of the camera.
enum class RunEnd { complete, interrupted, lost, noPicture, failed, outputsFailed };

// One run of the command.
class Live {
 public:
  Live(CommandCamera& command, const Settings& settings, const LiveOptions& options)
      : command_(command),
        camera_(command.camera()),
        settings_(settings),
        options_(options),
        duration_(options.duration) {}

  int run() {
    if (const int status = command_.connect(settings_); status != kDone) return status;
    if (const auto info = camera_.info()) serial_ = info->serialNumber();
    const ApplicationEvents events(camera_.stack().ports());
    const auto background = observe(platform::kApplicationDidEnterBackgroundNotification, true);
    const auto active = observe(platform::kApplicationDidBecomeActiveNotification, false);
    start_ = Clock::now();
    auto begun = camera_.beginStream(streamOptions());
    if (!begun) return complain(kRefused, "live", begun.error().message);
    stream_.emplace(*std::move(begun));
    int status = watchConnection();
    while (const auto patience = patienceAfter(status)) status = reconnect(*patience);
    stream_->stop();
    if (!lost_) letCameraKnow();
    endProgress();
    summarise();
    return statusWithOutputs(status);
  }

 private:
  StreamOptions streamOptions() {
    StreamOptions options;
    options.resolution = static_cast<std::uint8_t>(options_.resolution);
    if (options_.stitch) options.stitched = options_.stitched;
    options.outputs = options_.outputTexts;
    options.tell = tell;
    if (options_.duration)
      options.length = std::chrono::microseconds(static_cast<std::int64_t>(*options_.duration * 1e6));
    return options;
  }

  std::unique_ptr<platform::NotificationObservation> observe(std::string_view name, bool background) {
    return camera_.stack().ports().notifications.observe(name, [this, background](const platform::Notification&) {
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

  // The stream goes on by itself with the camera's next session.
  int reconnect(double patience) {
    lost_ = reopened_ = false;
    Settings again = settings_;
    again.camera = serial_;
    again.timeout = std::min(patience, duration_.left().value_or(patience));
    tell(fmt::format("the camera was lost; waiting up to {:.6g} s for {}", again.timeout, serial_));
    // Frames without pictures need another session too.
    if (camera_.linkStatus() == LinkStatus::flowing) camera_.stack().accessory().openCamera();
    if (const int status = command_.connect(again); status != kDone) return status;
    tell("the camera is there again");
    return watchConnection();
  }

  // One connection, to its end. Returns the exit status.
  int watchConnection() {
    const LossWatch link(camera_, LossWatch::Silence::isBorne);
    const RunEnd end = waitForEnd(link);
    reopened_ = link.wasReopened();
    return statusOf(end, stream_->failure());
  }

  std::uint64_t pictures() const { return stream_->statistics().pictures; }

  // Pictures must keep arriving, except in the background: a timeout without one ends the connection. Until then a
  // silent camera may continue, unless reconnecting is possible.
  RunEnd waitForEnd(const LossWatch& link) {
    const std::uint64_t first = pictures();
    std::uint64_t before = first;
    for (Clock::time_point came = Clock::now(), shown = came;; waitForStop(link.stop(), kLookPeriod)) {
      const Clock::time_point now = Clock::now();
      duration_.note(now, stream_->statistics().newestVideo);
      if (const auto end = endBy(link)) return *end;
      if (inBackground_ || pictures() != before) came = now;
      before = pictures();
      // Reconnects only after a connection that has delivered pictures.
      if (std::chrono::duration<double>(now - came).count() >= settings_.timeout) {
        return options_.reconnect && before != first ? RunEnd::lost : RunEnd::noPicture;
      }
      if (now - shown >= kProgressPeriod) shown = now, report();
    }
  }

  std::optional<RunEnd> endBy(const LossWatch& link) const {
    if (stream_->statistics().complete || duration_.isOver()) return RunEnd::complete;
    if (haveAllOutputsFailed()) return RunEnd::outputsFailed;
    if (wasInterrupted()) return RunEnd::interrupted;
    const LinkStatus status = camera_.linkStatus();
    const bool isSilent = status == LinkStatus::silent && options_.reconnect && !inBackground_;
    if (link.isLost() || isSilent) return RunEnd::lost;
    if (!stream_->failure()) return std::nullopt;
    return status == LinkStatus::flowing ? RunEnd::failed : RunEnd::lost;
  }

  bool haveAllOutputsFailed() const {
    return std::ranges::all_of(stream_->outputs(), [](const auto& one) { return one.state == OutputState::failed; });
  }

  // The commands that switch the camera's streams off are queued: the reply to a further request shows that they have
  // arrived.
  void letCameraKnow() const {
    static_cast<void>(camera_.switchSound(kAudioStreamOff, {.timeLimit = std::chrono::seconds(1)}).get());
  }

  int statusOf(RunEnd end, const std::optional<std::string>& failure) {
    switch (end) {
      case RunEnd::complete:
        tellWhereItStood();
        return kDone;
      case RunEnd::interrupted:
        return options_.duration || pictures() == 0 ? kInterrupted : kDone;
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
    const auto reports = stream_->outputs();
    const auto failed = std::ranges::find_if(reports, [](const auto& report) { return report.fault.has_value(); });
    if (failed == reports.end()) return false;
    rememberFailure("live: " + *failed->fault);
    return true;
  }

  int statusWithOutputs(int status) const { return status == kDone && rememberFaultOfOutputs() ? kRefused : status; }

  LiveFigures figures() const {
    LiveFigures all{stream_->statistics(), stream_->outputs()};
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
  static void tell(const std::string& line) { say("zelcam: live: " + line); }

  CommandCamera& command_;
  Camera& camera_;
  const Settings& settings_;
  const LiveOptions& options_;
  Clock::time_point start_ = Clock::now();
  std::string serial_;
  bool lost_ = false, reopened_ = false, showsProgress_ = false;
  std::atomic<bool> inBackground_ = false;
  LiveDuration duration_;
  std::optional<CameraStream> stream_;
};

}  // namespace

int runLive(const Invocation& invocation) {
  std::string complaint;
  const auto options = liveOptionsIn(invocation.values, complaint);
  if (!options) return complain(kWrongUsage, "live", complaint);
  if (options->usesStandardOutput()) leaveStandardOutput();
  av_log_set_level(AV_LOG_QUIET);  // zelcam prints its own messages
  turnSuspensionIntoEvents();
  CommandCamera command(invocation.settings, {.decoderThreads = options->decoderThreads, .staysWithCamera = true});
  return command.isThere() ? Live(command, invocation.settings, *options).run() : kNoCamera;
}

}  // namespace zel::app

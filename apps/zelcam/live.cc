#include "apps/zelcam/live.h"

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

#include <ZELTarkaSDK/platform/application_events.h>
#include <ZELTarkaSDK/platform/run_loop.h>
#include "apps/zelcam/bus.h"
#include "apps/zelcam/camera_link.h"
#include "apps/zelcam/interrupt.h"
#include "apps/zelcam/live_duration.h"
#include "apps/zelcam/live_options.h"
#include "apps/zelcam/muxing/outputs.h"
#include "apps/zelcam/output.h"
#include "apps/zelcam/passed_feed.h"
#include "apps/zelcam/stitched_feed.h"

namespace zel::app {
namespace {

using Clock = std::chrono::steady_clock;

constexpr double kLine = 0.5;  // seconds between two lines of progress

double cpuSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

std::int64_t peakMemory() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return std::int64_t{usage.ru_maxrss} * 1024;
}

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
        outputs_(options.outputs, [this](const std::string& line) { tell(line); }),
        writer_(writerRules()) {}

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
  StreamWriter::Rules writerRules() {
    StreamWriter::Rules rules;
    rules.spherical = options_.stitch;
    if (options_.duration) rules.length = static_cast<std::int64_t>(*options_.duration * 1e6);
    rules.begin = [this](const StreamHeaders& headers) { outputs_.begin(headers); };
    rules.put = [this](const MediaPacket& packet) { outputs_.put(packet); };
    rules.ended = [this] { bus_.platform().stopMainQueue(); };
    return rules;
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
    const std::shared_ptr<LiveFeed> feed = makeFeed(link);
    writer_.beginRun();
    feed->start();
    const auto tick = link.platform().ports().threads.currentRunLoop().scheduleRepeating(kLine, [&] {
      duration_.note(Clock::now(), writer_.written().newestVideo);
      report(*feed);
      link.wake();
    });
    const RunEnd end = waitForEnd(link, *feed);
    reopened_ = link.wasReopened();
    const std::optional<std::string> failure = feed->failure();
    feed->stop();
    letCameraKnow(link, end);
    figures_.add(feed->figures());
    return statusOf(end, failure);
  }

  std::shared_ptr<LiveFeed> makeFeed(CameraLink& link) {
    MediaClock& clock = bus_.mediaClock();
    clock.begin(link.stack().accessory().firewareVersion(), picturesPerSecond(options_.resolution));
    if (!options_.stitch) return std::make_shared<PassedFeed>(link, writer_, clock, options_.resolution);
    return std::make_shared<StitchedFeed>(link, writer_, clock, options_, bus_.arrivals());
  }

  // Pictures must keep arriving, except in the background: a timeout without one ends the connection. Until then a
  // silent camera may continue, unless reconnecting is possible.
  RunEnd waitForEnd(CameraLink& link, const LiveFeed& feed) {
    const std::uint64_t first = writer_.written().pictures;
    const auto isOver = [&] {
      const WrittenStream written = writer_.written();
      return written.complete || duration_.isOver() || written.fault || feed.failure() || outputs_.haveAllFailed() ||
             link.wasReopened();
    };
    const auto bears = [&](LinkLoss loss) {
      return loss == LinkLoss::silent && (inBackground_ || !options_.reconnect);
    };
    while (true) {
      const std::uint64_t before = writer_.written().pictures;
      const Waited end = link.waitFor(isOver, settings_.timeout, bears);
      if (end == Waited::interrupted) return RunEnd::interrupted;
      if (end == Waited::lost) return RunEnd::lost;
      if (end == Waited::timeOut && (inBackground_ || writer_.written().pictures != before)) continue;
      // Reconnects only after a connection that has delivered pictures.
      if (end == Waited::timeOut) return options_.reconnect && before != first ? RunEnd::lost : RunEnd::noPicture;
      return whyOver(link, feed);
    }
  }

  RunEnd whyOver(CameraLink& link, const LiveFeed& feed) const {
    const WrittenStream written = writer_.written();
    if (written.complete || duration_.isOver()) return RunEnd::complete;
    if (outputs_.haveAllFailed()) return RunEnd::outputsFailed;
    const bool forWantOfACamera = link.wasReopened() || (feed.failure() && link.isLost());
    return forWantOfACamera && !written.fault ? RunEnd::lost : RunEnd::failed;
  }

  // The commands that switch the camera's streams off are queued: the reply to a further request shows that they have
  // arrived.
  void letCameraKnow(CameraLink& link, RunEnd end) const {
    if (end == RunEnd::lost) return;
    constexpr double kLongest = 1;
    const auto answered = std::make_shared<std::atomic<bool>>(false);
    link.stack().ucd().msgReqSwitchAudioStreamType(0, [answered](const auto&) { answered->store(true); });
    link.platform().runMainQueueFor(0);
    const auto until = Clock::now() + std::chrono::duration<double>(kLongest);
    while (!answered->load() && link.stack().accessory().status() != 0 && Clock::now() < until) {
      link.platform().runMainQueueFor(0.02);
    }
  }

  int statusOf(RunEnd end, const std::optional<std::string>& failure) {
    switch (end) {
      case RunEnd::complete:
        tellWhereItStood();
        return kDone;
      case RunEnd::interrupted:
        return options_.duration || writer_.written().pictures == 0 ? kInterrupted : kDone;
      case RunEnd::lost:
        lost_ = true;
        if (!patienceAfter(kNoCamera)) sayFailure("live: the camera was lost", zelOSStatusError(kZELErrorNotConnected));
        return kNoCamera;
      case RunEnd::noPicture:
        sayFailure(fmt::format("live: no picture came within {} s", settings_.timeout));
        return kNoCamera;
      case RunEnd::failed:
        sayFailure("live: " + failure.value_or(writer_.written().fault.value_or("failed")));
        return kRefused;
      case RunEnd::outputsFailed:
        rememberFaultOfOutputs();
        sayFailure("live: no output is left");
        return kRefused;
    }
    return kRefused;
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

  LiveFigures figures(const FeedFigures& feed) const {
    LiveFigures all{feed, writer_.written(), outputs_.reports()};
    all.seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    all.cpuSeconds = cpuSeconds();
    all.peakMemory = peakMemory();
    return all;
  }

  // Standard output may carry a stream.
  void summarise() const {
    const LiveFigures all = figures(figures_);
    if (settings_.json) return printJson(jsonOf(all));
    for (const std::string& line : linesOf(all)) printLine(line);
  }

  void report(const LiveFeed& feed) {
    if (::isatty(STDERR_FILENO) == 0) return;
    FeedFigures now = figures_;
    now.add(feed.figures());
    showProgress(progressOf(figures(now)));
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
  FeedFigures figures_;  // of ended connections
  Outputs outputs_;
  StreamWriter writer_;
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

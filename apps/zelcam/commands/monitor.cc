#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <fmt/format.h>

#include <chrono>
#include <utility>

#include <ZELTarkaSDK/platform/ports.h>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/link/bus.h"
#include "apps/zelcam/link/camera_link.h"
#include "apps/zelcam/link/link_keeper.h"

namespace zel::app {
namespace {

using nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

constexpr std::pair<FrameType, const char*> kTypes[] = {
    {FrameType::previewVideo, "video"}, {FrameType::previewAudio, "audio"}, {FrameType::photo, "photo"},
    {FrameType::message, "message"},    {FrameType::registered, "data"},    {FrameType::timestamp, "timestamp"},
    {FrameType::file, "file"},          {FrameType::other, "other"}};

std::size_t index(FrameType type) { return static_cast<std::size_t>(type); }

ordered_json framesJson(const LinkStatistics& now, const LinkStatistics& before) {
  ordered_json frames = ordered_json::object();
  for (const auto& [type, name] : kTypes) {
    const std::uint64_t count = now.frames[index(type)] - before.frames[index(type)];
    if (count != 0) frames[name] = {{"frames", count}, {"bytes", now.bytes[index(type)] - before.bytes[index(type)]}};
  }
  return frames;
}

ordered_json droppedJson(const DroppedFrames& dropped) {
  return {{"unknownType", dropped.unknownType},
          {"noConsumer", dropped.noConsumer},
          {"unregisteredCode", dropped.unregisteredCode},
          {"shortMessage", dropped.shortMessage},
          {"unregisteredData", dropped.unregisteredData},
          {"shortTimestamp", dropped.shortTimestamp},
          {"timestampOldFirmware", dropped.timestampOldFirmware},
          {"noMemory", dropped.noMemory}};
}

// One run of the command. Its callbacks run on the main queue, except the status, which is reported on any thread.
class Monitor {
 public:
  // preview: the resolution code of the preview to watch, if any.
  Monitor(Bus& bus, const Settings& settings, std::optional<double> seconds, std::optional<std::int64_t> preview)
      : platform_(bus.platform()),
        settings_(settings),
        seconds_(seconds),
        preview_(preview),
        link_(bus, settings),
        stack_(link_.stack()) {}

  int run() {
    const auto watch = stack_.accessory().observeStatus([this](std::uint64_t status) { statusChanged(status); });
    const auto tick = platform_.ports().threads.currentRunLoop().scheduleRepeating(1.0, [this] { secondPassed(); });
    const int status = link_.open();
    if (status != kDone) platform_.drainMainQueue();
    if (status == kInterrupted) return kDone;
    if (status != kDone) return status;
    watchLink();
    summarise();
    return kDone;
  }

 private:
  double elapsed() const { return std::chrono::duration<double>(Clock::now() - start_).count(); }

  // Watches the link until the time is over or the user stops it.
  void watchLink() {
    const LinkKeeper keeper(platform_, settings_, stack_.accessory());
    link_.waitFor([] { return false; }, seconds_, [](LinkLoss) { return true; });
  }

  void statusChanged(std::uint64_t status) {
    platform_.ports().queues.mainQueue().post([this, status, at = elapsed(), clock = timeOfDay()] {
      const std::string_view name = toString(LinkStatus{status});
      if (preview_) keepPreviewOn(LinkStatus{status});
      tellDone(settings_.json,
               {{"event", "status"}, {"time", clock}, {"seconds", at}, {"status", status}, {"name", name}},
               fmt::format("{} {:8.3f} s  status {} ({})", clock, at, status, name));
    });
  }

  // A camera stops its streams when the session ends, so they are requested again.
  void keepPreviewOn(LinkStatus status) {
    if (status <= LinkStatus::open) previewIsOn_ = false;
    if (status != LinkStatus::flowing || std::exchange(previewIsOn_, true)) return;
    stack_.ucd().msgCmdStartVideoWithVideoRes(static_cast<std::uint8_t>(*preview_), {});
    stack_.ucd().msgReqSwitchAudioStreamType(kAudioStreamOn, {});
  }

  void secondPassed() {
    const LinkStatistics now = stack_.statistics();
    tellDone(settings_.json, figures("second", now, before_), secondLine(now));
    before_ = now;
  }

  std::string secondLine(const LinkStatistics& now) {
    std::string line = fmt::format("{} {:8.3f} s ", timeOfDay(), elapsed());
    for (const auto& [type, name] : kTypes) {
      const std::uint64_t frames = now.frames[index(type)] - before_.frames[index(type)];
      const std::uint64_t bytes = now.bytes[index(type)] - before_.bytes[index(type)];
      if (frames != 0) line += fmt::format(" {} {}/s {:.1f} kB/s ", name, frames, static_cast<double>(bytes) / 1000);
    }
    return line + fmt::format(" offset {} ms  round trip {} ms", stack_.accessory().timeOffset(), now.roundTrip);
  }

  ordered_json figures(const char* event, const LinkStatistics& now, const LinkStatistics& before) {
    ordered_json object = {{"event", event}, {"seconds", elapsed()}, {"status", stack_.accessory().status()}};
    object["frames"] = framesJson(now, before);
    object["dropped"] = droppedJson(now.dropped);
    object["bytesReceived"] = now.bytesReceived;
    object["bytesDiscarded"] = now.bytesDiscarded;
    object["markersFound"] = now.markersFound;
    object["positionsLost"] = now.positionsLost;
    object["streamErrors"] = now.streamErrors;
    object["clockOffset"] = stack_.accessory().timeOffset();
    object["roundTrip"] = now.roundTrip < 0 ? ordered_json() : ordered_json(now.roundTrip);
    object["resendsLeft"] = now.resendsLeft;
    object["lostForMemory"] = now.lostForMemory;
    return object;
  }

  void summarise() {
    platform_.drainMainQueue();
    const LinkStatistics now = stack_.statistics();
    if (settings_.json) return printJson(figures("summary", now, {}));
    printLine("");
    printLine(fmt::format("in {:.1f} s:", elapsed()));
    for (const auto& [type, name] : kTypes) {
      if (now.frames[index(type)] == 0) continue;
      printLine(
          fmt::format("  {:<12}{:>10} frames {:>14} bytes", name, now.frames[index(type)], now.bytes[index(type)]));
    }
    const ordered_json dropped = droppedJson(now.dropped);
    for (const auto& [cause, count] : dropped.items()) {
      if (count != 0) printLine(fmt::format("  {:<12}{:>10} frames: {}", "dropped", count.get<std::uint64_t>(), cause));
    }
    printLine(fmt::format("  synchronised {} times, position lost {} times, stream errors {}", now.markersFound,
                          now.positionsLost, now.streamErrors));
    printLine(fmt::format("  clock offset {} ms, round trip {} ms, {} re-sends left", stack_.accessory().timeOffset(),
                          now.roundTrip, now.resendsLeft));
  }

  LinuxPlatform& platform_;
  const Settings& settings_;
  const std::optional<double> seconds_;
  const std::optional<std::int64_t> preview_;
  bool previewIsOn_ = false;
  const Clock::time_point start_ = Clock::now();
  LinkStatistics before_;
  CameraLink link_;
  CameraStack& stack_;
};

}  // namespace

int runMonitor(const Invocation& invocation) {
  Bus bus(invocation.settings);
  if (!bus.isThere()) return kNoCamera;
  const Values& values = invocation.values;
  Monitor monitor(bus, invocation.settings, values.number("--seconds"), values.integer("--preview"));
  return monitor.run();
}

}  // namespace zel::app

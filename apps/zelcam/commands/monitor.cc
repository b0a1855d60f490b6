#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <fmt/format.h>

#include <chrono>
#include <utility>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"
#include "apps/zelcam/link/command_camera.h"

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

// One run of the command. It prints where the camera's callbacks run, and the summary on the main thread.
class Monitor {
 public:
  // preview: the resolution code of the preview to watch, if any.
  Monitor(CommandCamera& command, const Settings& settings, std::optional<std::int64_t> preview)
      : command_(command), camera_(command.camera()), settings_(settings), preview_(preview) {}

  int run(std::optional<double> seconds) {
    auto link = camera_.linkChanges({.capacity = kMostChanges});
    link.each([this](LinkStatus status) { statusChanged(status); });
    auto statistics = camera_.statisticsEvery(std::chrono::seconds(1));
    statistics.each([this](const CameraStatistics& now) { secondPassed(now); });
    const int status = command_.connect(settings_);
    if (status == kDone) waitForStop(interruption(), seconds);
    link.close();
    statistics.close();
    if (status == kDone) summarise();
    return status == kInterrupted ? kDone : status;
  }

 private:
  static constexpr std::size_t kMostChanges = 1000;  // that wait to be printed

  double elapsed() const { return std::chrono::duration<double>(Clock::now() - start_).count(); }

  void statusChanged(LinkStatus status) {
    if (preview_) keepPreviewOn(status);
    const std::string clock = timeOfDay();
    const double at = elapsed();
    const auto number = static_cast<std::uint64_t>(status);
    tellDone(settings_.json,
             {{"event", "status"}, {"time", clock}, {"seconds", at}, {"status", number}, {"name", toString(status)}},
             fmt::format("{} {:8.3f} s  status {} ({})", clock, at, number, toString(status)));
  }

  // A camera stops its streams when the session ends, so they are requested again. Nobody takes them, which a preview
  // of the camera object would.
  void keepPreviewOn(LinkStatus status) {
    if (status <= LinkStatus::open) previewIsOn_ = false;
    if (status != LinkStatus::flowing || std::exchange(previewIsOn_, true)) return;
    ZELCameraUCD& ucd = camera_.stack().ucd();
    ucd.msgCmdStartVideoWithVideoRes(static_cast<std::uint8_t>(*preview_), {});
    ucd.msgReqSwitchAudioStreamType(kAudioStreamOn, {});
  }

  void secondPassed(const CameraStatistics& now) {
    tellDone(settings_.json, figures("second", now, before_), secondLine(now));
    before_ = now.link;
  }

  std::string secondLine(const CameraStatistics& now) {
    std::string line = fmt::format("{} {:8.3f} s ", timeOfDay(), elapsed());
    for (const auto& [type, name] : kTypes) {
      const std::uint64_t frames = now.link.frames[index(type)] - before_.frames[index(type)];
      const std::uint64_t bytes = now.link.bytes[index(type)] - before_.bytes[index(type)];
      if (frames != 0) line += fmt::format(" {} {}/s {:.1f} kB/s ", name, frames, static_cast<double>(bytes) / 1000);
    }
    return line + fmt::format(" offset {} ms  round trip {} ms", now.clockOffset, now.link.roundTrip);
  }

  ordered_json figures(const char* event, const CameraStatistics& now, const LinkStatistics& before) {
    const LinkStatistics& link = now.link;
    ordered_json object = {
        {"event", event}, {"seconds", elapsed()}, {"status", static_cast<std::uint64_t>(now.status)}};
    object["frames"] = framesJson(link, before);
    object["dropped"] = droppedJson(link.dropped);
    object["bytesReceived"] = link.bytesReceived;
    object["bytesDiscarded"] = link.bytesDiscarded;
    object["markersFound"] = link.markersFound;
    object["positionsLost"] = link.positionsLost;
    object["streamErrors"] = link.streamErrors;
    object["clockOffset"] = now.clockOffset;
    object["roundTrip"] = link.roundTrip < 0 ? ordered_json() : ordered_json(link.roundTrip);
    object["resendsLeft"] = link.resendsLeft;
    object["lostForMemory"] = link.lostForMemory;
    return object;
  }

  void summarise() {
    const CameraStatistics all = camera_.allStatistics();
    const LinkStatistics& now = all.link;
    if (settings_.json) return printJson(figures("summary", all, {}));
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
    printLine(fmt::format("  clock offset {} ms, round trip {} ms, {} re-sends left", all.clockOffset, now.roundTrip,
                          now.resendsLeft));
  }

  CommandCamera& command_;
  Camera& camera_;
  const Settings& settings_;
  const std::optional<std::int64_t> preview_;
  bool previewIsOn_ = false;
  const Clock::time_point start_ = Clock::now();
  LinkStatistics before_;
};

}  // namespace

int runMonitor(const Invocation& invocation) {
  CommandCamera command(invocation.settings, {.keepsLink = true});
  if (!command.isThere()) return kNoCamera;
  const Values& values = invocation.values;
  return Monitor(command, invocation.settings, values.integer("--preview")).run(values.number("--seconds"));
}

}  // namespace zel::app

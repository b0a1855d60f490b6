#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/ZELCameraNotificationProtocol.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

#include <ZELTarkaSDK/platform/ports.h>

#include "apps/zelcam/commands/event_queue.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/link/bus.h"
#include "apps/zelcam/link/camera_link.h"
#include "base/has_memory_for.h"

namespace zel::app {
namespace {

using nlohmann::ordered_json;

constexpr std::pair<ZELCameraEvent, const char*> kNames[] = {
    {ZELCameraEvent::firmwareUpdateDone, "firmwareUpdateDone"},
    {ZELCameraEvent::recordAutoSplit, "recordAutoSplit"},
    {ZELCameraEvent::batteryUpdate, "batteryUpdate"},
    {ZELCameraEvent::batteryLow, "batteryLow"},
    {ZELCameraEvent::batteryShutDown, "batteryShutDown"},
    {ZELCameraEvent::cardState, "cardState"},
    {ZELCameraEvent::keyPressed, "keyPressed"},
    {ZELCameraEvent::mediaOffset, "mediaOffset"},
    {ZELCameraEvent::recordCardRunout, "recordCardRunout"},
    {ZELCameraEvent::recordTimeRunout, "recordTimeRunout"},
    {ZELCameraEvent::gyroData, "gyroData"},
    {ZELCameraEvent::shutterState, "shutterState"},
    {ZELCameraEvent::deleteProgress, "deleteProgress"},
};

const char* nameOf(std::int64_t type) {
  const auto* const found =
      std::ranges::find(kNames, ZELCameraEvent{type}, &std::pair<ZELCameraEvent, const char*>::first);
  return found != std::end(kNames) ? found->second : "unknown";
}

// Events contain numbers, text and errors; other types are not printed.
ordered_json shown(const ZELMessageFields::Value& value) {
  return std::visit(
      [](const auto& one) -> ordered_json {
        using T = std::decay_t<decltype(one)>;
        if constexpr (std::is_integral_v<T> || std::is_same_v<T, std::string>) return one;
        if constexpr (std::is_same_v<T, ZELError>) return errorJson(one);
        return nullptr;
      },
      value);
}

ordered_json valueJson(const std::optional<ZELMessageFields>& value) {
  ordered_json object = ordered_json::object();
  if (!value) return object;
  for (const auto& [key, field] : value->all()) object[key] = shown(field);
  return object;
}

// Receives events on the session thread and prints them on the main queue.
class EventPrinter final : public ZELCameraNotificationProtocol {
 public:
  EventPrinter(CameraLink& link, const Settings& settings, std::optional<std::int64_t> count)
      : platform_(link.platform()), settings_(settings), left_(count) {}

  void notificationType(std::int64_t type, const std::optional<ZELMessageFields>& value) override {
    if (queue_.put(type, value)) postPrinting();
  }

  bool isDone() const { return left_ && *left_ == 0; }

  // Events that came while too many waited.
  std::uint64_t dropped() const { return queue_.dropped(); }

 private:
  static constexpr int kAtOnce = 100;  // before the main queue gets to something else

  // One task is on its way at a time, however many events wait.
  void postPrinting() {
    if (isPosted_.exchange(true)) return;
    if (!hasMemoryFor([this] { platform_.ports().queues.mainQueue().post([this] { printSome(); }); })) {
      isPosted_.store(false);  // the next event tries again
    }
  }

  void printSome() {
    isPosted_.store(false);
    for (int printed = 0; printed < kAtOnce; ++printed) {
      const auto event = queue_.take();
      if (!event) return;
      print(event->type, event->value);
    }
    if (!queue_.empty()) postPrinting();
  }

  void print(std::int64_t type, const std::optional<ZELMessageFields>& value) {
    if (isDone()) return;
    if (left_) --*left_;
    const ordered_json fields = valueJson(value);
    std::string line = fmt::format("{} {}", timeOfDay(), nameOf(type));
    for (const auto& [key, field] : fields.items()) line += fmt::format(" {}={}", key, printable(field.dump()));
    tellDone(settings_.json, {{"event", type}, {"name", nameOf(type)}, {"value", fields}, {"time", timeOfDay()}}, line);
    if (isDone()) platform_.stopMainQueue();
  }

  LinuxPlatform& platform_;
  const Settings& settings_;
  std::optional<std::int64_t> left_;
  EventQueue queue_;
  std::atomic<bool> isPosted_ = false;
};

}  // namespace

int runEvents(const Invocation& invocation) {
  const Settings& settings = invocation.settings;
  Bus bus(settings);
  if (!bus.isThere()) return kNoCamera;
  CameraLink link(bus, settings);
  // Added before the camera is opened, so that no event is missed.
  const auto printer = std::make_shared<EventPrinter>(link, settings, invocation.values.integer("--count"));
  link.stack().ucd().addCameraNotificationReceiver(printer);
  int status = link.open();
  if (status == kDone) {
    if (!settings.json || settings.verbose) say("zelcam: waiting for events; Ctrl-C ends it");
    const Waited end = link.waitFor([&printer] { return printer->isDone(); }, std::nullopt);
    status = end == Waited::interrupted ? kDone : tellEnd("events", end, std::nullopt, settings);
  }
  link.stack().ucd().removeCameraNotificationReceiver(printer.get());
  if (printer->dropped() != 0) {
    say(fmt::format("zelcam: events: {} were dropped, since they came faster than they could be shown",
                    printer->dropped()));
  }
  return status;
}

}  // namespace zel::app

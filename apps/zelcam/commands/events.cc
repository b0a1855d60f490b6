#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/ZELCameraNotificationProtocol.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <fmt/format.h>

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>

#include "apps/zelcam/commands/event_queue.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"
#include "apps/zelcam/link/command_camera.h"
#include "apps/zelcam/link/loss_watch.h"
#include "gateway/json/event_json.h"

namespace zel::app {
namespace {

using nlohmann::ordered_json;

// Keeps the events that come on the session thread for the main thread.
class WaitingEvents final : public ZELCameraNotificationProtocol {
 public:
  void notificationType(std::int64_t type, const std::optional<ZELMessageFields>& value) override {
    if (!queue_.put(type, value)) return;
    const std::lock_guard lock(mutex_);
    came_.notify_one();
  }

  // Waits for the next one; nothing after the stop, once all have been taken.
  std::optional<EventQueue::Event> next(const std::stop_token& stop) {
    std::unique_lock lock(mutex_);
    came_.wait(lock, stop, [this] { return !queue_.empty(); });
    return queue_.take();
  }

  // Events that came while too many waited.
  std::uint64_t dropped() const { return queue_.dropped(); }

 private:
  EventQueue queue_;
  std::mutex mutex_;  // for the wait alone
  std::condition_variable_any came_;
};

void print(const EventQueue::Event& event, const Settings& settings) {
  const ordered_json object = gateway::eventJson(event.type, event.value, timeOfDay());
  std::string line = fmt::format("{} {}", object["time"].get<std::string>(), object["name"].get<std::string>());
  for (const auto& [key, field] : object["value"].items()) line += fmt::format(" {}={}", key, printable(field.dump()));
  tellDone(settings.json, object, line);
}

int show(WaitingEvents& events, Camera& camera, const Settings& settings, std::optional<std::int64_t> count) {
  const LossWatch watch(camera, LossWatch::Silence::isLoss);
  if (!settings.json || settings.verbose) say("zelcam: waiting for events; Ctrl-C ends it");
  for (std::int64_t shown = 0; shown != count; ++shown) {
    const auto event = events.next(watch.stop());
    if (wasInterrupted()) return kDone;
    if (!event) return tellFailure("events", zelOSStatusError(kZELErrorNotConnected));
    print(*event, settings);
  }
  return kDone;
}

}  // namespace

int runEvents(const Invocation& invocation) {
  const Settings& settings = invocation.settings;
  CommandCamera command(settings, {});
  if (!command.isThere()) return kNoCamera;
  // From the classes, since an event is shown under the interface's own keys; and added before the camera is looked
  // for, so that none is missed.
  const auto events = std::make_shared<WaitingEvents>();
  ZELCameraUCD& ucd = command.camera().stack().ucd();
  ucd.addCameraNotificationReceiver(events);
  int status = command.connect(settings);
  if (status == kDone) status = show(*events, command.camera(), settings, invocation.values.integer("--count"));
  ucd.removeCameraNotificationReceiver(events.get());
  if (events->dropped() != 0) {
    say(fmt::format("zelcam: events: {} were dropped, since they came faster than they could be shown",
                    events->dropped()));
  }
  return status;
}

}  // namespace zel::app

#include "apps/zelcam/commands/commands.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <ZELTarkaSDK/platform/ports.h>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"
#include "apps/zelcam/link/bus.h"
#include "apps/zelcam/link/camera_choice.h"

namespace zel::app {
namespace {

using nlohmann::ordered_json;
using platform::AccessoryDescription;

ordered_json toJson(const AccessoryDescription& description) {
  return {{"connectionID", description.connectionID},
          {"manufacturer", description.manufacturer},
          {"name", description.name},
          {"modelNumber", description.modelNumber},
          {"serialNumber", description.serialNumber},
          {"firmwareRevision", description.firmwareRevision},
          {"hardwareRevision", description.hardwareRevision},
          {"protocolStrings", description.protocolStrings},
          {"dockType", description.dockType}};
}

void printForPeople(const AccessoryDescription& description) {
  printLine(printable(description.serialNumber));
  ordered_json fields = toJson(description);
  fields.erase("serialNumber");
  fields["protocolStrings"] = fmt::format("{}", fmt::join(description.protocolStrings, ", "));
  for (const auto& [name, value] : fields.items()) {
    const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    printLine(fmt::format("  {:<18}{}", name, printable(text)));
  }
}

void print(const AccessoryDescription& description, const Settings& settings) {
  if (settings.json) {
    printJson(toJson(description));
  } else {
    printForPeople(description);
  }
}

void report(const char* event, const platform::Notification& notification, const Settings& settings) {
  const auto accessory = notification.accessory(platform::kAccessoryKey);
  if (!accessory) return;
  const AccessoryDescription& description = accessory->description();
  if (!settings.camera.empty() && description.serialNumber != settings.camera) return;
  ordered_json object = {{"event", event}, {"time", timeOfDay()}};
  object.update(toJson(description));
  tellDone(settings.json, object,
           fmt::format("{} {} {} ({})", timeOfDay(), event, printable(description.serialNumber),
                       printable(description.name)));
}

int watchDevices(LinuxPlatform& platform, const Settings& settings) {
  const auto& ports = platform.ports();
  const auto connected = ports.notifications.observe(platform::kAccessoryDidConnectNotification,
                                                     [&](const auto& one) { report("connected", one, settings); });
  const auto disconnected = ports.notifications.observe(
      platform::kAccessoryDidDisconnectNotification, [&](const auto& one) { report("disconnected", one, settings); });
  ports.accessories.registerForLocalNotifications();
  for (const auto& one : chosenAccessories(platform.ports(), settings)) print(one->description(), settings);
  const std::stop_callback stopping(interruption(), [&platform] { platform.stopMainQueue(); });
  platform.runMainQueue();
  ports.accessories.unregisterForLocalNotifications();
  return kDone;
}

}  // namespace

int runDevices(const Invocation& invocation) {
  const Settings& settings = invocation.settings;
  const auto bus = openBus(settings);
  if (!bus) return kNoCamera;
  LinuxPlatform& platform = *bus;
  if (invocation.values.has("--watch")) return watchDevices(platform, settings);
  const Accessories accessories = chosenAccessories(platform.ports(), settings);
  for (const auto& one : accessories) print(one->description(), settings);
  if (accessories.empty() && !settings.camera.empty()) {
    sayUnknownCamera(platform.ports(), settings);
    return kNoCamera;
  }
  if (accessories.empty()) say("no accessory is attached");
  return kDone;
}

}  // namespace zel::app

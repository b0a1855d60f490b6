#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"
#include "apps/zelcam/link/command_camera.h"

namespace zel::app {
namespace {

using nlohmann::ordered_json;
using Shown = std::vector<ordered_json>;  // a reply's values

// The table, with the values that the camera has sent.
class Table {
 public:
  explicit Table(const Settings& settings) : settings_(settings) {}

  void add(const std::string& key, const ordered_json& value) { object_[key] = value; }

  // A reply's values by key; null for missing ones. valuesOf: makes them of the reply.
  template <class T, class ValuesOf>
  void add(const std::vector<std::string>& keys, const Result<T>& reply, const ValuesOf& valuesOf) {
    const Shown values = reply ? valuesOf(*reply) : Shown(keys.size());
    for (std::size_t at = 0; at < keys.size(); ++at) add(keys[at], values[at]);
    if (!reply) status_ = std::max(status_, tellFailure(keys.front(), reply.error(), settings_));
  }

  void print() const {
    if (settings_.json) return printJson(withFailure());
    for (const auto& [key, value] : object_.items()) {
      const std::string text = value.is_string() ? printable(value.get<std::string>()) : value.dump();
      printLine(fmt::format("{:<20}{}", key, value.is_null() ? "-" : text));
    }
  }

  int status() const { return status_; }

 private:
  ordered_json withFailure() const {
    ordered_json object = object_;
    if (status_ != kDone) object["error"] = failureJson(status_);
    return object;
  }

  const Settings& settings_;
  ordered_json object_;
  int status_ = kDone;
};

void addIdentity(Table& table, Camera& camera) {
  if (const auto info = camera.info()) {
    table.add("name", info->name());
    table.add("manufacturer", info->manufacturer());
    table.add("modelNumber", info->modelNumber());
    table.add("serialNumber", info->serialNumber());
    table.add("firmwareRevision", info->firmwareRevision());
    table.add("hardwareRevision", info->hardwareRevision());
  }
  const ZELCameraAccessory& accessory = camera.stack().accessory();
  table.add("firewareVersion", accessory.firewareVersion());  // the interface's spelling
  table.add("status", accessory.status());
  table.add("clockOffset", accessory.timeOffset());
}

Shown textOf(const std::optional<std::string>& text) { return {text ? ordered_json(*text) : ordered_json()}; }
Shown numberOf(std::uint32_t number) { return {number}; }

// All requests, sent at once.
struct Questions {
  Questions(Camera& camera, const RequestOptions& limits)
      : battery(camera.battery(limits)),
        card(camera.card(limits)),
        serial(camera.serialNumber(limits)),
        uuid(camera.uuid(limits)),
        seconds(camera.videoSecondsRemaining(limits)),
        photos(camera.photosRemaining(limits)) {}

  Pending<Battery> battery;
  Pending<Card> card;
  Pending<std::optional<std::string>> serial, uuid;
  Pending<std::uint32_t> seconds, photos;
};

// All replies, waited for.
struct Replies {
  explicit Replies(Questions asked)
      : battery(asked.battery.get()),
        card(asked.card.get()),
        serial(asked.serial.get()),
        uuid(asked.uuid.get()),
        seconds(asked.seconds.get()),
        photos(asked.photos.get()) {}

  Result<Battery> battery;
  Result<Card> card;
  Result<std::optional<std::string>> serial, uuid;
  Result<std::uint32_t> seconds, photos;
};

int ask(Camera& camera, const Settings& settings) {
  const Replies replies(Questions(camera, limitsOf(settings)));
  if (wasInterrupted()) return kInterrupted;
  Table table(settings);
  addIdentity(table, camera);
  table.add({"powerType", "batteryLevel"}, replies.battery, [](const Battery& now) {
    return Shown{now.powerType, now.level};
  });
  table.add({"cardState", "cardSpaceWhole", "cardSpaceFree"}, replies.card, [](const Card& now) {
    return Shown{now.state, now.capacityBytes, now.freeBytes};
  });
  table.add({"storedSerialNumber"}, replies.serial, textOf);
  table.add({"uuid"}, replies.uuid, textOf);
  table.add({"videoTimeRemaining"}, replies.seconds, numberOf);
  table.add({"photoShotsRemaining"}, replies.photos, numberOf);
  table.print();
  return table.status();
}

}  // namespace

int runInfo(const Invocation& invocation) {
  const Settings& settings = invocation.settings;
  return withCamera(settings, [&](Camera& camera) { return ask(camera, settings); });
}

}  // namespace zel::app

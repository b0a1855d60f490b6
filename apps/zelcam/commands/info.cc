#include "apps/zelcam/commands/commands.h"

#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <tuple>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/link/answer.h"
#include "apps/zelcam/link/bus.h"
#include "apps/zelcam/link/camera_link.h"

namespace zel::app {
namespace {

using nlohmann::ordered_json;
using Text = std::optional<std::string>;

template <class... Values>
using Asked = std::shared_ptr<Answer<Values...>>;

// All requests of the command, sent at once.
struct Questions {
  explicit Questions(CameraLink& link) {
    ZELCameraUCD& ucd = link.stack().ucd();
    LinuxPlatform& platform = link.platform();
    ucd.msgReqBatteryWithRebackBlock(keepIn(battery, platform));
    ucd.msgReqGetCardStateWithRebackBlock(keepIn(card, platform));
    ucd.msgReqGetSerialNumber(keepIn(serial, platform));
    ucd.msgReqGetUUIDWithRebackBlock(keepIn(uuid, platform));
    ucd.msgReqGetVideoTimeRemainingWithRebackBlock(keepIn(videoTime, platform));
    ucd.msgReqGetPhotoShotsRemainingWithRebackBlock(keepIn(shots, platform));
  }

  bool areAnswered() const {
    return battery->done && card->done && serial->done && uuid->done && videoTime->done && shots->done;
  }

  Asked<std::uint8_t, std::uint8_t> battery = std::make_shared<Answer<std::uint8_t, std::uint8_t>>();
  Asked<std::uint8_t, std::uint64_t, std::uint64_t> card =
      std::make_shared<Answer<std::uint8_t, std::uint64_t, std::uint64_t>>();
  Asked<Text> serial = std::make_shared<Answer<Text>>();
  Asked<Text> uuid = std::make_shared<Answer<Text>>();
  Asked<std::uint32_t> videoTime = std::make_shared<Answer<std::uint32_t>>();
  Asked<std::uint32_t> shots = std::make_shared<Answer<std::uint32_t>>();
};

// The table, with the values that the camera has sent.
class Table {
 public:
  Table(Waited end, const Settings& settings) : end_(end), settings_(settings) {}

  void add(const std::string& key, const ordered_json& value) { object_[key] = value; }

  // A reply's values by key; null for missing ones.
  template <class... Values>
  void add(const std::vector<std::string>& keys, const Answer<Values...>& answer) {
    const bool good = answer.done && !answer.error;
    std::size_t key = 0;
    std::apply([&](const auto&... values) { ((object_[keys[key++]] = good ? shown(values) : ordered_json()), ...); },
               answer.values);
    const Waited end = answer.done ? Waited::done : end_;
    status_ = std::max(status_, tellEnd(keys.front(), end, answer.error, settings_));
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
  static ordered_json shown(const Text& text) { return text ? ordered_json(*text) : ordered_json(); }
  template <std::integral T>
  static ordered_json shown(T number) {
    return number;
  }

  ordered_json withFailure() const {
    ordered_json object = object_;
    if (status_ != kDone) object["error"] = failureJson(status_);
    return object;
  }

  const Waited end_;
  const Settings& settings_;
  ordered_json object_;
  int status_ = kDone;
};

void addIdentity(Table& table, CameraStack& stack) {
  const ZELCameraAccessory& accessory = stack.accessory();
  if (const auto info = accessory.accessoryInfo()) {
    table.add("name", info->name());
    table.add("manufacturer", info->manufacturer());
    table.add("modelNumber", info->modelNumber());
    table.add("serialNumber", info->serialNumber());
    table.add("firmwareRevision", info->firmwareRevision());
    table.add("hardwareRevision", info->hardwareRevision());
  }
  table.add("firewareVersion", accessory.firewareVersion());  // the interface's spelling
  table.add("status", accessory.status());
  table.add("clockOffset", accessory.timeOffset());
}

int ask(CameraLink& link, const Settings& settings) {
  const Questions asked(link);
  const Waited end = link.waitFor([&asked] { return asked.areAnswered(); }, settings.timeout);
  if (end == Waited::interrupted) return kInterrupted;
  Table table(end, settings);
  addIdentity(table, link.stack());
  table.add({"powerType", "batteryLevel"}, *asked.battery);
  table.add({"cardState", "cardSpaceWhole", "cardSpaceFree"}, *asked.card);
  table.add({"storedSerialNumber"}, *asked.serial);
  table.add({"uuid"}, *asked.uuid);
  table.add({"videoTimeRemaining"}, *asked.videoTime);
  table.add({"photoShotsRemaining"}, *asked.shots);
  table.print();
  return table.status();
}

}  // namespace

int runInfo(const Invocation& invocation) {
  const Settings& settings = invocation.settings;
  return withCamera(settings, [&](CameraLink& link) { return ask(link, settings); });
}

}  // namespace zel::app

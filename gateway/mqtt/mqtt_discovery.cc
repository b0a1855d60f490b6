#include "gateway/mqtt/mqtt_discovery.h"

#include <ZELTarkaSDK/Version.h>

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

#include "gateway/json/json_line.h"
#include "gateway/mqtt/mqtt_topics.h"

namespace zel::gateway {
namespace {

using nlohmann::ordered_json;

constexpr std::string_view kPrefix = "homeassistant";  // of the convention

// A value of the camera that a hub shows. Empty texts stand for what it has not.
struct Sensor {
  std::string_view id, name, topic, member;
  std::string_view unit = {}, deviceClass = {}, stateClass = {};
};
constexpr Sensor kSensors[] = {
    {"status", "Status", "status", "status"},
    {"battery", "Battery", "info", "batteryLevel", "%", "battery", "measurement"},
    {"card_free", "Free space on the card", "info", "cardSpaceFree", "B", "data_size", "measurement"},
    {"photos_left", "Photos left", "info", "photoShotsRemaining", {}, {}, "measurement"},
    {"video_left", "Recording time left", "info", "videoTimeRemaining", "s", "duration", "measurement"},
    {"round_trip", "Round trip", "statistics", "roundTrip", "ms", "duration", "measurement"},
    {"dropped", "Dropped frames", "statistics", "dropped", {}, {}, "total_increasing"},
};

// Something that a hub's user presses.
struct Button {
  std::string_view id, name, command, content;
};
constexpr Button kButtons[] = {
    {"photo", "Take a photo", "photo", "{}"},
    {"record_start", "Start recording", "record", R"({"action":"start"})"},
    {"record_stop", "Stop recording", "record", R"({"action":"stop"})"},
};

ordered_json deviceOf(const CameraSummary& camera) {
  return {{"identifiers", ordered_json::array({"zel_" + discoveryId(camera.serialNumber)})},
          {"name", camera.name.empty() ? "Camera " + camera.serialNumber : camera.name},
          {"serial_number", camera.serialNumber},
          {"sw_version", camera.firmware}};
}

ordered_json recordOf(const CameraSummary& camera, std::string_view gateway, std::string_view id,
                      std::string_view name) {
  const auto topic = [](std::string path) { return ordered_json{{"topic", std::move(path)}}; };
  ordered_json record;
  record["name"] = name;
  record["unique_id"] = fmt::format("zel_{}_{}", discoveryId(camera.serialNumber), id);
  record["availability"] =
      ordered_json::array({topic(gatewayTopic(gateway)), topic(cameraTopic(camera.serialNumber, "availability"))});
  record["availability_mode"] = "all";
  record["device"] = deviceOf(camera);
  record["origin"] = {{"name", "zelcam"}, {"sw_version", std::string(ZELTarkaSDKVersionString)}};
  return record;
}

MqttMessage messageOf(std::string_view component, const CameraSummary& camera, std::string_view id,
                      const ordered_json& record) {
  return {fmt::format("{}/{}/zel_{}/{}/config", kPrefix, component, discoveryId(camera.serialNumber), id),
          jsonLine(record), true};
}

MqttMessage sensorRecord(const CameraSummary& camera, std::string_view gateway, const Sensor& sensor) {
  ordered_json record = recordOf(camera, gateway, sensor.id, sensor.name);
  record["state_topic"] = cameraTopic(camera.serialNumber, sensor.topic);
  record["value_template"] = fmt::format("{{{{ value_json.{} }}}}", sensor.member);
  if (!sensor.unit.empty()) record["unit_of_measurement"] = sensor.unit;
  if (!sensor.deviceClass.empty()) record["device_class"] = sensor.deviceClass;
  if (!sensor.stateClass.empty()) record["state_class"] = sensor.stateClass;
  return messageOf("sensor", camera, sensor.id, record);
}

MqttMessage buttonRecord(const CameraSummary& camera, std::string_view gateway, const Button& button) {
  ordered_json record = recordOf(camera, gateway, button.id, button.name);
  record["command_topic"] = cameraTopic(camera.serialNumber, fmt::format("command/{}", button.command));
  record["payload_press"] = button.content;
  return messageOf("button", camera, button.id, record);
}

}  // namespace

std::string discoveryId(std::string_view name) {
  std::string id;
  for (const char letter : name) {
    const auto code = static_cast<unsigned char>(letter);
    const bool isPlain = code < 0x80 && (std::isalnum(code) != 0 || letter == '-');
    id += isPlain ? std::string(1, letter) : fmt::format("_{:02X}", code);
  }
  return id;
}

std::vector<MqttMessage> discoveryRecords(const CameraSummary& camera, std::string_view gateway,
                                          const std::vector<std::string>& commands) {
  std::vector<MqttMessage> records;
  for (const Sensor& sensor : kSensors) records.push_back(sensorRecord(camera, gateway, sensor));
  for (const Button& button : kButtons) {
    if (std::ranges::find(commands, button.command) != commands.end())
      records.push_back(buttonRecord(camera, gateway, button));
  }
  return records;
}

}  // namespace zel::gateway

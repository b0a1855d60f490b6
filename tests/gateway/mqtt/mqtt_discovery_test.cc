#include "gateway/mqtt/mqtt_discovery.h"

#include <gmock/gmock.h>

#include <regex>
#include <set>

namespace zel::gateway {
namespace {

using nlohmann::json;

CameraSummary camera() { return {"E1A0001", "Example 360", "E1_2.0.1_192", CameraStatus::streaming, std::nullopt}; }

json recordAt(const std::vector<MqttMessage>& records, const std::string& topic) {
  for (const MqttMessage& one : records)
    if (one.topic == topic) return json::parse(one.content);
  return nullptr;
}

TEST(MqttDiscoveryTest, ASensorSaysWhereItsValueIsAndWhenItCounts) {
  const auto record =
      recordAt(discoveryRecords(camera(), "attic", {}), "homeassistant/sensor/zel_E1A0001/battery/config");
  ASSERT_TRUE(record.is_object());
  EXPECT_EQ(record["state_topic"], "zel/E1A0001/info");
  EXPECT_EQ(record["value_template"], "{{ value_json.batteryLevel }}");
  EXPECT_EQ(record["unit_of_measurement"], "%");
  EXPECT_EQ(record["device_class"], "battery");
  EXPECT_EQ(record["unique_id"], "zel_E1A0001_battery");
  EXPECT_EQ(record["availability"], json::parse(R"([{"topic": "zel/gateways/attic/availability"},
                                                    {"topic": "zel/E1A0001/availability"}])"));
  EXPECT_EQ(record["availability_mode"], "all");
  EXPECT_EQ(record["device"], json::parse(R"({"identifiers": ["zel_E1A0001"], "name": "Example 360",
                                              "serial_number": "E1A0001", "sw_version": "E1_2.0.1_192"})"));
}

TEST(MqttDiscoveryTest, AButtonPressesACommandThatThereIs) {
  const auto record =
      recordAt(discoveryRecords(camera(), "attic", {"record"}), "homeassistant/button/zel_E1A0001/record_start/config");
  ASSERT_TRUE(record.is_object());
  EXPECT_EQ(record["command_topic"], "zel/E1A0001/command/record");
  EXPECT_EQ(json::parse(record["payload_press"].get<std::string>()), json::parse(R"({"action": "start"})"));
  EXPECT_TRUE(recordAt(discoveryRecords(camera(), "attic", {"record"}), "homeassistant/button/zel_E1A0001/photo/config")
                  .is_null());
}

TEST(MqttDiscoveryTest, TopicsHoldOnlyWhatTheConventionAllowsWhateverTheCameraIsCalled) {
  CameraSummary strange = camera();
  strange.serialNumber = "a/b+#\"<b>\xFF";
  strange.name = "\"}{\xFF";
  std::set<std::string> topics;
  for (const MqttMessage& one : discoveryRecords(strange, "g/+", {"photo", "record"})) {
    EXPECT_TRUE(std::regex_match(one.topic, std::regex("homeassistant/(sensor|button)/[a-zA-Z0-9_-]+/[a-z_]+/config")))
        << one.topic;
    EXPECT_TRUE(one.isRetained);
    EXPECT_FALSE(json::parse(one.content, nullptr, false).is_discarded()) << one.content;
    EXPECT_TRUE(topics.insert(one.topic).second) << one.topic;
  }
  EXPECT_EQ(topics.size(), 10U);
}

TEST(MqttDiscoveryTest, DifferentNamesHaveDifferentIdentifiers) {
  EXPECT_EQ(discoveryId("E1-a"), "E1-a");
  EXPECT_NE(discoveryId("a_2F"), discoveryId("a/"));
  EXPECT_NE(discoveryId("a b"), discoveryId("a_b"));
}

}  // namespace
}  // namespace zel::gateway

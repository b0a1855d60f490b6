#include "platform/linux/accessory_description.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace zel::platform {
namespace {

using ::testing::ElementsAre;
using Json = nlohmann::json;

const char* const kWhole = R"({
  "connectionID": 7, "manufacturer": "Example", "name": "Example 360", "modelNumber": "E1", "serialNumber": "E1A0001",
  "firmwareRevision": "E1_2.0.1_192", "hardwareRevision": "1.0", "protocolStrings": ["com.zelcam.ucd", "b"],
  "dockType": "usb", "endpoint": { "type": "unix", "path": "/run/e1.sock" } })";

class AccessoryDescriptionTest : public ::testing::Test {
 protected:
  // The fault of the whole description with one field changed.
  std::string faultWith(const char* pointer, const Json& value) {
    Json changed = Json::parse(kWhole);
    changed[Json::json_pointer(pointer)] = value;
    return faultOf(changed.dump());
  }
  std::string faultOf(std::string_view text) {
    std::string fault;
    const auto parsed = parseAccessoryDescription(text, fault);
    EXPECT_EQ(parsed.has_value(), fault.empty());
    return fault;
  }
  Endpoint endpointOf(const Json& value) {
    Json changed = Json::parse(kWhole);
    changed["endpoint"] = value;
    const auto parsed = parseAccessoryDescription(changed.dump(), fault_);
    return parsed ? parsed->endpoint : Endpoint();
  }

  std::string fault_;
};

TEST_F(AccessoryDescriptionTest, EveryFieldIsRead) {
  const auto parsed = parseAccessoryDescription(kWhole, fault_);
  ASSERT_TRUE(parsed) << fault_;
  const AccessoryDescription& description = parsed->description;
  EXPECT_EQ(description.connectionID, 7U);
  EXPECT_EQ(description.manufacturer, "Example");
  EXPECT_EQ(description.name, "Example 360");
  EXPECT_EQ(description.modelNumber, "E1");
  EXPECT_EQ(description.serialNumber, "E1A0001");
  EXPECT_EQ(description.firmwareRevision, "E1_2.0.1_192");
  EXPECT_EQ(description.hardwareRevision, "1.0");
  EXPECT_THAT(description.protocolStrings, ElementsAre("com.zelcam.ucd", "b"));
  EXPECT_EQ(description.dockType, "usb");
  EXPECT_EQ(parsed->endpoint, Endpoint(UnixEndpoint{"/run/e1.sock"}));
}

TEST_F(AccessoryDescriptionTest, TcpAndDeviceEndpointsAreRead) {
  EXPECT_EQ(endpointOf({{"type", "tcp"}, {"host", "::1"}, {"port", 65535}}), Endpoint(TcpEndpoint{"::1", 65535}));
  EXPECT_EQ(endpointOf({{"type", "device"}, {"path", "/dev/ttyACM0"}}), Endpoint(DeviceEndpoint{"/dev/ttyACM0"}));
}

TEST_F(AccessoryDescriptionTest, FieldsOfLaterVersionsAreIgnored) {
  EXPECT_EQ(faultWith("/colour", "red"), "");
  EXPECT_EQ(faultWith("/endpoint/speed", 5), "");
}

TEST_F(AccessoryDescriptionTest, EachMissingFieldIsNamed) {
  for (const char* name : {"connectionID", "manufacturer", "name", "modelNumber", "serialNumber", "firmwareRevision",
                           "hardwareRevision", "protocolStrings", "dockType", "endpoint"}) {
    Json without = Json::parse(kWhole);
    without.erase(name);
    EXPECT_EQ(faultOf(without.dump()), "\"" + std::string(name) + "\" is missing");
  }
  EXPECT_EQ(faultWith("/endpoint", {{"type", "unix"}}), "\"endpoint.path\" is missing");
  EXPECT_EQ(faultWith("/endpoint", {{"type", "tcp"}, {"host", "h"}}), "\"endpoint.port\" is missing");
}

TEST_F(AccessoryDescriptionTest, WrongTypesAreNamed) {
  EXPECT_EQ(faultWith("/name", 5), "\"name\" is not a string");
  EXPECT_EQ(faultWith("/protocolStrings", "com.zelcam.ucd"), "\"protocolStrings\" is not a list");
  EXPECT_EQ(faultWith("/protocolStrings/0", nullptr), "\"protocolStrings\" holds something that is not a string");
  EXPECT_EQ(faultWith("/endpoint", "unix"), "\"endpoint\" is not an object");
  EXPECT_EQ(faultWith("/endpoint/path", true), "\"endpoint.path\" is not a string");
}

TEST_F(AccessoryDescriptionTest, ConnectionIdentifierIsUnsigned64Bit) {
  const std::string fault = "\"connectionID\" is not a whole number from 0 to 18446744073709551615";
  EXPECT_EQ(faultWith("/connectionID", 18446744073709551615U), "");
  EXPECT_EQ(faultWith("/connectionID", -1), fault);
  EXPECT_EQ(faultWith("/connectionID", 1.5), fault);
  EXPECT_EQ(faultWith("/connectionID", "7"), fault);
  std::string tooLarge = kWhole;
  tooLarge.replace(tooLarge.find(": 7,"), 4, ": 18446744073709551616,");
  EXPECT_EQ(faultOf(tooLarge), fault);
}

TEST_F(AccessoryDescriptionTest, PortIsFrom1To65535) {
  const std::string fault = "\"endpoint.port\" is not from 1 to 65535";
  const auto withPort = [&](const Json& port) {
    return faultWith("/endpoint", {{"type", "tcp"}, {"host", "h"}, {"port", port}});
  };
  EXPECT_EQ(withPort(1), "");
  EXPECT_EQ(withPort(65535), "");
  EXPECT_EQ(withPort(0), fault);
  EXPECT_EQ(withPort(65536), fault);
  EXPECT_EQ(withPort(-1), fault);
  EXPECT_EQ(withPort("80"), fault);
}

TEST_F(AccessoryDescriptionTest, SocketPathFitsIntoItsAddress) {
  EXPECT_EQ(faultWith("/endpoint/path", std::string(107, 'a')), "");
  EXPECT_EQ(faultWith("/endpoint/path", std::string(108, 'a')), "\"endpoint.path\" is longer than 107 bytes");
  EXPECT_EQ(faultWith("/endpoint/path", ""), "\"endpoint.path\" is empty");
  EXPECT_EQ(faultWith("/endpoint/path", std::string("a\0b", 3)), "\"endpoint.path\" holds a zero character");
}

TEST_F(AccessoryDescriptionTest, UnknownEndpointIsRefused) {
  EXPECT_EQ(faultWith("/endpoint/type", "usb"), "\"endpoint.type\" is none of unix, tcp, device");
}

TEST_F(AccessoryDescriptionTest, OtherThanAnObjectIsRefused) {
  EXPECT_EQ(faultOf(""), "is not JSON");
  EXPECT_EQ(faultOf("{\"name\":"), "is not JSON");
  EXPECT_EQ(faultOf(std::string(kWhole) + "x"), "is not JSON");
  EXPECT_EQ(faultOf("{\"name\":\"\xff\"}"), "is not JSON");
  EXPECT_EQ(faultOf("[]"), "is not a JSON object");
  EXPECT_EQ(faultOf("7"), "is not a JSON object");
}

TEST_F(AccessoryDescriptionTest, SizeIsBounded) {
  std::string text = kWhole;
  text.resize(65536, ' ');
  EXPECT_EQ(faultOf(text), "");
  text.push_back(' ');
  EXPECT_EQ(faultOf(text), "is larger than 65536 bytes");
}

TEST_F(AccessoryDescriptionTest, DepthIsBounded) {
  EXPECT_EQ(faultOf(std::string(65536, '[')), "is nested deeper than 16 levels");
  std::string objects;
  while (objects.size() < 65000) objects += "{\"a\":";
  EXPECT_EQ(faultOf(objects), "is nested deeper than 16 levels");
}

}  // namespace
}  // namespace zel::platform

// What a host is promised, one by one. It is linked to the shared library alone, so what is not exported does not link.

#include <ZELTarkaSDK/ZELTarkaSDK.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "tests/public/operations.h"

namespace zel::test {
namespace {

class PublicOperation : public testing::TestWithParam<Operation> {};

TEST_P(PublicOperation, BearsItsFirstLabelAndHasAParameterForEach) {
  const Operation& operation = GetParam();
  const std::string_view labels = operation.labels;
  EXPECT_EQ(operation.name, labels.substr(0, labels.find(':')));
  EXPECT_EQ(operation.labelsFilled, static_cast<std::size_t>(std::ranges::count(labels, ':')));
  EXPECT_TRUE(operation.isThere());
}

INSTANTIATE_TEST_SUITE_P(Interface, PublicOperation, testing::ValuesIn(kOperations), [](const auto& row) {
  return std::string(row.param.owner) + "_" + std::string(row.param.name);
});

TEST(PublicInterface, SpellsNotificationsAndTheirKeysAsEver) {
  EXPECT_EQ(kZELCameraDidConnectNotification, "ZELCameraDidConnectNotification");
  EXPECT_EQ(kZELCameraDidDisConnectNotification, "ZELCameraDidDisConnectNotification");
  EXPECT_EQ(kZELCameraConnectAccessoryKey, "ZELCameraConnectAccessoryKey");
  EXPECT_EQ(ZELCameraNotificationBatteryChange, "ZELCameraNotificationBatteryChange");
  EXPECT_EQ(ZELCameraNotificationBatteryLow, "ZELCameraNotificationBatteryLow");
  EXPECT_EQ(ZELCameraNotificationPowerOff, "ZELCameraNotificationPowerOff");
  EXPECT_EQ(kZELPowerTypeKey, "powerType");
  EXPECT_EQ(kZELBatteryStateKey, "batteryState");
}

TEST(PublicInterface, SpellsTheDomainsOfErrorsAndTheirCodesAsEver) {
  EXPECT_STREQ(kZELCameraAccessoryErrorDomain, "CameraAcccessoryError");
  EXPECT_STREQ(kZELOSStatusErrorDomain, "NSOSStatusErrorDomain");
  EXPECT_STREQ(kZELLiveSourceErrorDomain, "zelcam.liveSource");
  EXPECT_EQ(kZELErrorNotConnected, 100);
  EXPECT_EQ(kZELErrorRefused, 101);
  EXPECT_EQ(kZELErrorOldFirmware, 120);
}

TEST(PublicInterface, SpellsTheKeysOfRequestsAndRepliesAsEver) {
  EXPECT_THAT(
      (std::vector{key::ucharValue,      key::ucharValue2,   key::shortValue, key::ushortValue, key::intValue,
                   key::intValue2,       key::uintValue,     key::uintValue2, key::uintValue3,  key::int64Value,
                   key::uint64Value,     key::uint64Value2,  key::nsString,   key::nsData,      key::nsValue1,
                   key::meteringWeights, key::exposureParam, key::gpsData,    key::gyroData,    key::orientationData,
                   key::fileTime,        key::fileSize,      key::fileName,   key::nsError}),
      testing::ElementsAre("ucharValue", "ucharValue2", "shortValue", "ushortValue", "intValue", "intValue2",
                           "uintValue", "uintValue2", "uintValue3", "int64Value", "uint64Value", "uint64Value2",
                           "nsString", "NSData", "NSValue1", "IPAEMMWeight", "IPMEParam", "gpsData", "gyroData",
                           "orientationData", "fileTime", "FileSize", "fileName", "NSError"));
}

TEST(PublicInterface, TellsTheConstantsOfTheWire) {
  EXPECT_EQ(kFirewareVersion190, 190);
  EXPECT_THAT(dataSynchronismValue, testing::ElementsAre(0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA));
  EXPECT_EQ(kAccessoryProtocol, "com.zelcam.ucd");
}

TEST(PublicInterface, IsBroughtWholeByOneHeader) {
  std::ifstream file(std::string(HEADERS) + "/ZELTarkaSDK.h");
  const std::string umbrella{std::istreambuf_iterator<char>(file), {}};
  std::size_t headers = 0;
  for (const auto& entry : std::filesystem::directory_iterator(HEADERS)) {
    if (entry.is_directory()) continue;  // the ports, which "platform/ports.h" brings
    const std::string name = entry.path().filename();
    if (name == "ZELTarkaSDK.h" || name.starts_with("zel")) continue;  // zel.h and those that it brings are C
    EXPECT_THAT(umbrella, testing::HasSubstr("#include <ZELTarkaSDK/" + name + ">\n"));
    ++headers;
  }
  EXPECT_GT(headers, 30u);
}

}  // namespace
}  // namespace zel::test

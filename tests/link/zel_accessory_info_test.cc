#include <ZELTarkaSDK/ZELAccessoryInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ZELTarkaSDK/platform/accessory.h>

namespace zel::test {
namespace {

using testing::ElementsAre;

struct FixedAccessory final : platform::Accessory {
  const platform::AccessoryDescription& description() const override { return said; }
  bool isConnected() const override { return true; }
  double foundationVersion() const override { return foundation; }
  platform::AccessoryDescription said{7,     "Example",          "Example 360", "E1", "E1A0001", "E1_2.0.1_192",
                                      "1.0", {"com.zelcam.ucd"}, "usb"};
  double foundation = 1240.1;
};

TEST(ZELAccessoryInfoTest, TakesEveryPropertyFromTheAccessory) {
  const auto info = ZELAccessoryInfo::initWithAccessory(FixedAccessory());
  EXPECT_TRUE(info->isConnected());
  EXPECT_EQ(info->connectionID(), 7u);
  EXPECT_EQ(info->manufacturer(), "Example");
  EXPECT_EQ(info->name(), "Example 360");
  EXPECT_EQ(info->modelNumber(), "E1");
  EXPECT_EQ(info->serialNumber(), "E1A0001");
  EXPECT_EQ(info->firmwareRevision(), "E1_2.0.1_192");
  EXPECT_EQ(info->hardwareRevision(), "1.0");
  EXPECT_THAT(info->protocolStrings(), ElementsAre("com.zelcam.ucd"));
  EXPECT_EQ(info->dockType(), "usb");
}

TEST(ZELAccessoryInfoTest, LeavesTheDockTypeOutBelowFoundation1240Point1) {
  FixedAccessory accessory;
  accessory.foundation = 1240.0;
  EXPECT_EQ(ZELAccessoryInfo::initWithAccessory(accessory)->dockType(), "");
}

TEST(ZELAccessoryInfoTest, EqualsOneBuiltFromTheSameDictionary) {
  const ZELAccessoryDict dict = {{"connected", true},
                                 {"connectionID", std::uint64_t{7}},
                                 {"manufacturer", std::string("Example")},
                                 {"name", std::string("Example 360")},
                                 {"modelNumber", std::string("E1")},
                                 {"serialNumber", std::string("E1A0001")},
                                 {"firmwareRevision", std::string("E1_2.0.1_192")},
                                 {"hardwareRevision", std::string("1.0")},
                                 {"protocolStrings", std::vector<std::string>{"com.zelcam.ucd"}},
                                 {"dockType", std::string("usb")}};
  EXPECT_EQ(*ZELAccessoryInfo::initWithAccessoryDict(dict), *ZELAccessoryInfo::initWithAccessory(FixedAccessory()));
}

TEST(ZELAccessoryInfoTest, IsNotMadeFromAnUnknownKey) {
  EXPECT_EQ(ZELAccessoryInfo::initWithAccessoryDict({{"colour", std::string("red")}}), nullptr);
}

TEST(ZELAccessoryInfoTest, IsNotMadeFromAWronglyTypedValue) {
  EXPECT_EQ(ZELAccessoryInfo::initWithAccessoryDict({{"connectionID", std::string("7")}}), nullptr);
}

TEST(ZELAccessoryInfoTest, LeavesWhatTheDictionaryLacksEmpty) {
  const auto info = ZELAccessoryInfo::initWithAccessoryDict({{"name", std::string("E1")}});
  EXPECT_EQ(info->name(), "E1");
  EXPECT_EQ(info->connectionID(), 0u);
  EXPECT_FALSE(info->isConnected());
}

}  // namespace
}  // namespace zel::test

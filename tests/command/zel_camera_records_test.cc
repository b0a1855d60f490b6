#include <ZELTarkaSDK/ZELCameraRecords.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/command/command_test.h"

// Each member by its name: what it holds stands at its place on the wire, lowest byte first.

namespace zel::test {
namespace {

template <class Record>
std::string wire(const Record& record) {
  return hexText(std::bit_cast<std::array<std::uint8_t, sizeof(Record)>>(record));
}

TEST(ZELCameraRecordsTest, PlaceTheGps) {
  ZELGpsData gps{};
  gps.latitude = 1.0;
  gps.longitude = -2.0;
  gps.altitude = 0.5;
  EXPECT_EQ(wire(gps), "000000000000f03f00000000000000c0000000000000e03f");
}

TEST(ZELCameraRecordsTest, PlaceTheGyro) {
  ZELGyroData gyro{};
  gyro.ax = 1.f;
  gyro.ay = 2.f;
  gyro.az = 3.f;
  gyro.gx = 4.f;
  gyro.gy = 5.f;
  gyro.gz = 6.f;
  EXPECT_EQ(wire(gyro), "0000803f0000004000004040000080400000a0400000c040");
}

TEST(ZELCameraRecordsTest, PlaceTheOrientation) {
  ZELOrientationData orientation{};
  orientation.x = 1;
  orientation.y = 2;
  orientation.z = 3;
  orientation.w = -4;
  EXPECT_EQ(wire(orientation), "010000000200000003000000fcffffff");
}

TEST(ZELCameraRecordsTest, PlaceTheBracket) {
  aeb_info bracket{};
  bracket.count = 3;
  bracket.steps[0] = -2;
  bracket.steps[8] = 9;
  EXPECT_EQ(wire(bracket), "03fe0000000000000009");
}

TEST(ZELCameraRecordsTest, PlaceTheManualExposure) {
  ZELIPMEParam exposure{};
  exposure.value1 = 1;
  exposure.value2 = 2;
  EXPECT_EQ(wire(exposure), "0102");
}

TEST(ZELCameraRecordsTest, PlaceTheWhiteBalanceGains) {
  calib_wb_gain gain{};
  gain.value1 = 1;
  gain.value2 = 2;
  gain.gains[0] = 3;
  gain.gains[3] = -1;
  EXPECT_EQ(wire(gain), "0102030000000000ffff");
}

TEST(ZELCameraRecordsTest, PlaceTheVignetteLumas) {
  calib_vignette_luma luma{};
  luma.value1 = 1;
  luma.value2 = 2;
  luma.lumas[0] = 3;
  luma.lumas[1] = 4;
  EXPECT_EQ(wire(luma), "010203000400");
}

TEST(ZELCameraRecordsTest, PlaceTheVignetteGains) {
  calib_vignette_gain gain{};
  gain.value1 = 1;
  gain.value2 = 2;
  gain.gains[0] = 3;
  gain.gains[5] = 4;
  EXPECT_EQ(wire(gain), "0102030000000000000000000400");
}

TEST(ZELCameraRecordsTest, PlaceTheTimeLapse) {
  timelapse_info info{};
  info.value1 = 0x01020304;
  info.value2 = 5;
  info.value3 = 6;
  info.exposure.value1 = 7;
  info.exposure.value2 = 8;
  EXPECT_EQ(wire(info), "0403020105060708");
}

TEST(ZELCameraRecordsTest, PlaceTheOriginOffset) {
  ZELOriginOffset offset{};
  offset.lens0[0] = 1;
  offset.lens0[2] = 3;
  offset.lens1[0] = 4;
  offset.lens1[2] = 6;
  offset.valueA = 7;
  offset.valueB = 8;
  EXPECT_EQ(wire(offset),
            "01000000"
            "00000000"
            "03000000"
            "04000000"
            "00000000"
            "06000000"
            "0700"
            "0800");
}

TEST(ZELCameraRecordsTest, PlaceTheMediaOffset) {
  ZELMediaOffset offset{};
  offset.valueA = 1;
  offset.valueB = 2;
  offset.valueC = 3;
  offset.lensCount = 4;
  offset.reserved1 = 5;
  offset.reserved2 = 6;
  offset.reserved3 = 7;
  offset.lenses[0].p[0] = 8;
  offset.lenses[0].reserved[1] = 9;
  offset.lenses[1].p[5] = 10;
  const std::string zeros(16, '0');  // of eight bytes
  EXPECT_EQ(wire(offset),
            "0100020003000000"
            "04050600"
            "07000000"
            "08000000" +
                zeros + zeros +
                "0000000000000000"
                "09000000" +
                zeros + zeros +
                "00000000"
                "0a000000" +
                zeros);
}

TEST(ZELCameraRecordsTest, PlaceAVideosMetadata) {
  ZELVideoMnd record{};
  record.head[0] = 1;
  record.value = 2;
  record.offset.valueA = 3;
  record.gps.latitude = 1.0;
  record.gyro.ax = 1.f;
  record.orientation.x = 4;
  record.tail[31] = 5;
  const auto at = [&](std::size_t byte) { return wire(record).substr(2 * byte, 4); };
  EXPECT_EQ(at(0), "0100");
  EXPECT_EQ(at(8), "0200");
  EXPECT_EQ(at(16), "0300");
  EXPECT_EQ(at(96 + 6), "f03f");
  EXPECT_EQ(at(120 + 2), "803f");
  EXPECT_EQ(at(144), "0400");
  EXPECT_EQ(at(190), "0005");
}

}  // namespace
}  // namespace zel::test

// Every request that hosts can make: what it writes, and what its handler makes of each reply.

#include "protocol/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tests/command/command_test.h"

namespace zel::test {
namespace {

// What lengthening a reply means.
enum class Extra { ignored, partOfTheValue };
// Whether the reply begins with a flag.
enum class Flag { yes, no };

struct Exchange {
  const char* operation;
  void (*call)(ZELCameraUCD& ucd, Outcome& outcome);
  const char* request;        // the whole frame: length, data type, code, body
  const char* reply;          // the shortest good one: code, body
  const char* result;         // what the handler then gets
  const char* refusedResult;  // what it gets for a refusal
  Flag flag = Flag::yes;
  Extra extra = Extra::ignored;
};

void PrintTo(const Exchange& exchange, std::ostream* out) { *out << exchange.operation; }

// What all captures carry: 1.0, -2.0, 0.5; 1 to 6; 1, -1, 2, -2.
const ZELGpsData kGps{1.0, -2.0, 0.5};
const ZELGyroData kGyro{1.f, 2.f, 3.f, 4.f, 5.f, 6.f};
const ZELOrientationData kOrientation{1, -1, 2, -2};
#define TRIPLE                                             \
  "000000000000F03F 00000000000000C0 000000000000E03F "    \
  "0000803F 00000040 00004040 00008040 0000A040 0000C040 " \
  "01000000 FFFFFFFF 02000000 FEFFFFFF "

ZELData data(std::initializer_list<int> values) { return ZELData(bytes(values)); }

std::shared_ptr<const ZELMediaGps> gps() { return ZELMediaGps::initWithLatitude(1.0, -2.0, 0.5); }
std::shared_ptr<const ZELMediaGyro> gyro() { return ZELMediaGyro::initWithGyroData(kGyro); }
std::shared_ptr<const ZELMediaOrientation> orientation() { return ZELMediaOrientation::initWithX(1.9, -1, 2, -2.9); }

// Time 0x01020304, size 0x0807060504030201, name "A.JPG".
#define CAPTURE "04030201 0102030405060708 412E4A504700"
const char kCapture[] = "ok 16909060 578437695752307201 \"A.JPG\"";
const char kNoCapture[] = "error 101 0 0 none";

// Each exchange reads as operation, call, request, reply, results.
// clang-format off
#define CALL [](ZELCameraUCD & ucd, Outcome & outcome)
const Exchange kExchanges[] = {
    {"msgCmdStartVideoWithVideoRes", CALL { ucd.msgCmdStartVideoWithVideoRes(11, outcome); },
     "09000000 0400 0400 0B", "0480 01 0B", "ok 11", "error 101 0"},
    {"msgCmdStopVPWithRebackBlock", CALL { ucd.msgCmdStopVPWithRebackBlock(outcome); },
     "08000000 0400 0600", "0680 01", "ok", "error 101"},
    {"msgCmdShutterWithGps", CALL { ucd.msgCmdShutterWithGps(kGps, kGyro, kOrientation, outcome, {}); },
     "48000000 0400 0700" TRIPLE, "0780 04030201 0102030405060708 00", "ok 16909060 578437695752307201 \"\"",
     kNoCapture, Flag::no, Extra::partOfTheValue},
    {"newMsgCmdShutterWithGps", CALL { ucd.newMsgCmdShutterWithGps(gps(), gyro(), orientation(), outcome, {}); },
     "48000000 0400 0700" TRIPLE, "0780" CAPTURE, kCapture, kNoCapture, Flag::no, Extra::partOfTheValue},
    {"msgCmdShutterExtraWithGps",
     CALL { ucd.msgCmdShutterExtraWithGps(kGps, kGyro, kOrientation, data({1, 2}), outcome, {}); },
     "4A000000 0400 1100" TRIPLE "0102", "1180" CAPTURE, kCapture, kNoCapture, Flag::no, Extra::partOfTheValue},
    {"newMsgCmdShutterExtraWithGps",
     CALL { ucd.newMsgCmdShutterExtraWithGps(gps(), gyro(), orientation(), data({3}), outcome, {}); },
     "49000000 0400 1100" TRIPLE "03", "1180" CAPTURE, kCapture, kNoCapture, Flag::no, Extra::partOfTheValue},
    {"msgCmdShutterAEBWithGps",
     CALL {
       ucd.msgCmdShutterAEBWithGps(kGps, kGyro, kOrientation, {3, {-2, 0, 2}}, data({7}), outcome, {});
     },
     "53000000 0400 0F00" TRIPLE "03 FE 00 02 000000000000 07", "0F80" CAPTURE, kCapture, "error 101 none none none",
     Flag::no, Extra::partOfTheValue},
    {"newMsgCmdShutterAEBWithGps",
     CALL {
       ucd.newMsgCmdShutterAEBWithGps(gps(), gyro(), orientation(), {9, {1, 2, 3, 4, 5, 6, 7, 8, 9}}, data({7, 8}),
                                      outcome, {});
     },
     "54000000 0400 0F00" TRIPLE "09 010203040506070809 0708", "0F80" CAPTURE, kCapture, "error 101 none none none",
     Flag::no, Extra::partOfTheValue},
    {"msgCmdStartRecordWithGps", CALL { ucd.msgCmdStartRecordWithGps(kGps, kGyro, kOrientation, outcome); },
     "48000000 0400 0800" TRIPLE, "0880 01", "ok", "error 101"},
    {"newMsgCmdStartRecordWithGps", CALL { ucd.newMsgCmdStartRecordWithGps(gps(), gyro(), orientation(), outcome); },
     "48000000 0400 0800" TRIPLE, "0880 01", "ok", "error 101"},
    {"msgCmdStartRecordExtraWithGps",
     CALL { ucd.msgCmdStartRecordExtraWithGps(kGps, kGyro, kOrientation, data({9}), outcome); },
     "49000000 0400 1200" TRIPLE "09", "1280 01", "ok", "error 101"},
    {"newMsgCmdStartRecordExtraWithGps",
     CALL { ucd.newMsgCmdStartRecordExtraWithGps(gps(), gyro(), orientation(), data({9}), outcome); },
     "49000000 0400 1200" TRIPLE "09", "1280 01", "ok", "error 101"},
    {"newMsgCmdStartRecordPTSWithGps",
     CALL { ucd.newMsgCmdStartRecordPTSWithGps(gps(), gyro(), orientation(), data({9}), outcome); },
     "49000000 0400 1400" TRIPLE "09", "1480 01 FEFFFFFFFFFFFFFF", "ok -2", "error 101 0"},
    {"msgCmdStopRecordWithRebackBlock", CALL { ucd.msgCmdStopRecordWithRebackBlock(outcome); },
     "08000000 0400 0900", "0980 04030201 0102030405060708 00", "ok 16909060 578437695752307201 \"\"", kNoCapture,
     Flag::no, Extra::partOfTheValue},
    {"msgCmdRecordCancelWithRebackBlock", CALL { ucd.msgCmdRecordCancelWithRebackBlock(outcome); },
     "08000000 0400 0B00", "0B80 01", "ok", "error 101"},
    {"msgCmdSetVideoRes", CALL { ucd.msgCmdSetVideoRes(9, outcome); },
     "09000000 0400 0A00 09", "0A80 00", "ok 0", "error 101 0", Flag::no},
    {"msgCmdSetVideoBitrate", CALL { ucd.msgCmdSetVideoBitrate(1, 40, outcome); },
     "0A000000 0400 0C00 01 28", "0C80 01 28", "ok 40", "error 101 0"},
    {"msgReqBatteryWithRebackBlock", CALL { ucd.msgReqBatteryWithRebackBlock(outcome); },
     "08000000 0400 0140", "01C0 00 50", "ok 0 80", "error 101 0 0", Flag::no},
    {"msgReqSetPhotoSize", CALL { ucd.msgReqSetPhotoSize(3, outcome); },
     "09000000 0400 0240 03", "02C0 00", "ok 0", "error 101 0", Flag::no},
    {"msgReqSetLocalTime", CALL { ucd.msgReqSetLocalTime(0x01020304, -60, outcome); },
     "10000000 0400 0640 04030201 C4FFFFFF", "06C0 01", "ok", "error 101"},
    {"msgReqSysctrl", CALL { ucd.msgReqSysctrl(2, 5, outcome); },
     "0A000000 0400 0740 02 05", "07C0 01", "ok", "error 101"},
    {"msgReqSysctrlCancel", CALL { ucd.msgReqSysctrlCancel(2, outcome); },
     "09000000 0400 0840 02", "08C0 01", "ok", "error 101"},
    {"msgReqUpdateGps", CALL { static_cast<void>(outcome), ucd.msgReqUpdateGps(kGps); },
     "20000000 0400 0A40 000000000000F03F 00000000000000C0 000000000000E03F", nullptr, nullptr, nullptr},
    {"newMsgReqUpdateGps", CALL { static_cast<void>(outcome), ucd.newMsgReqUpdateGps(nullptr); },
     "20000000 0400 0A40 000000000000000000000000000000000000000000000000", nullptr, nullptr, nullptr},
    {"msgReqSetKeyFunc0", CALL { ucd.msgReqSetKeyFunc0(1, outcome); },
     "09000000 0400 0C40 01", "0CC0 01", "ok", "error 101"},
    {"msgReqSetMute", CALL { ucd.msgReqSetMute(1, outcome); }, "09000000 0400 0D40 01", "0DC0 01", "ok", "error 101"},
    {"msgReqGetCardStateWithRebackBlock", CALL { ucd.msgReqGetCardStateWithRebackBlock(outcome); },
     "08000000 0400 0E40", "0EC0 00 0100000000000000 0002000000000000", "ok 0 1 512", "error 101 0 0 0", Flag::no},
    {"msgReqGetMediaOffset", CALL { ucd.msgReqGetMediaOffset(4, 5, outcome); },
     "0A000000 0400 0F40 04 05",
     "0FC0 01 E00B F005 07000000 01 00 0000 00000000"
     "E8030000 0CFEFFFF DC050000 00000000 00000000 905F0100 0000000000000000"
     "0000000000000000000000000000000000000000000000000000000000000000",
     "ok \"1_1.000_-0.500_1.500_0.000_0.000_90.000_3040_1520_7\"", "error 101 none"},
    {"msgReqSetMediaOffset", CALL { ucd.msgReqSetMediaOffset(4, 5, "1_1_-0.5_1.5_0_0_90_3040_1520_7", outcome); },
     "5A000000 0400 1040 04 05 E00B F005 07000000 01 00 0000 00000000"
     "E8030000 0CFEFFFF DC050000 00000000 00000000 905F0100 0000000000000000"
     "0000000000000000000000000000000000000000000000000000000000000000",
     "10C0 01", "ok", "error 101"},
    {"msgReqUpdateGyro", CALL { static_cast<void>(outcome), ucd.msgReqUpdateGyro(kGyro); },
     "20000000 0400 1140 0000803F 00000040 00004040 00008040 0000A040 0000C040", nullptr, nullptr, nullptr},
    {"newMsgReqUpdateGyro", CALL { static_cast<void>(outcome), ucd.newMsgReqUpdateGyro(gyro()); },
     "20000000 0400 1140 0000803F 00000040 00004040 00008040 0000A040 0000C040", nullptr, nullptr, nullptr},
    {"msgReqGetSerialNumber", CALL { ucd.msgReqGetSerialNumber(outcome); },
     "08000000 0400 1240", "12C0 01 45", "ok \"E\"", "error 101 none", Flag::yes, Extra::partOfTheValue},
    {"msgReqSetSerialNumber", CALL { ucd.msgReqSetSerialNumber("E1A", outcome); },
     "0B000000 0400 1340 453141", "13C0 01", "ok", "error 101"},
    {"msgReqSetIPSwitchMode", CALL { ucd.msgReqSetIPSwitchMode(6, outcome); },
     "09000000 0400 1440 06", "14C0 01", "ok", "error 101"},
    {"msgReqSetAEEVBias", CALL { ucd.msgReqSetAEEVBias(-2, outcome); },
     "0A000000 0400 1540 FEFF", "15C0 01", "ok", "error 101"},
    {"msgReqSetAEMeterMode", CALL { ucd.msgReqSetAEMeterMode(2, outcome); },
     "09000000 0400 1640 02", "16C0 01", "ok", "error 101"},
    {"msgReqSetAEMMWeight", CALL { ucd.msgReqSetAEMMWeight({{1, 2, 3}}, outcome); },
     "09000000 0400 1640 00", "16C0 01", "ok", "error 101"},
    {"msgReqSetStillPMode", CALL { ucd.msgReqSetStillPMode(1, 2, outcome); },
     "0A000000 0400 1840 01 02", "18C0 01", "ok", "error 101"},
    {"msgReqSetMEParam", CALL { ucd.msgReqSetMEParam(1, {2, 3}, outcome); },
     "0B000000 0400 1940 01 02 03", "19C0 01", "ok", "error 101"},
    {"msgReqSetWBMode", CALL { ucd.msgReqSetWBMode(2, outcome); },
     "09000000 0400 1A40 02", "1AC0 01", "ok", "error 101"},
    {"msgReqSetImageBrightness", CALL { ucd.msgReqSetImageBrightness(-256, outcome); },
     "0A000000 0400 1B40 00FF", "1BC0 01", "ok", "error 101"},
    {"msgReqSetImageContrast", CALL { ucd.msgReqSetImageContrast(0x1234, outcome); },
     "0A000000 0400 1C40 3412", "1CC0 01", "ok", "error 101"},
    {"msgReqSetImageSaturation", CALL { ucd.msgReqSetImageSaturation(0xFFFF, outcome); },
     "0A000000 0400 1D40 FFFF", "1DC0 01", "ok", "error 101"},
    {"msgReqSetImageHue", CALL { ucd.msgReqSetImageHue(7, outcome); },
     "09000000 0400 1E40 07", "1EC0 01", "ok", "error 101"},
    {"msgReqSetImageSharpness", CALL { ucd.msgReqSetImageSharpness(8, outcome); },
     "09000000 0400 1F40 08", "1FC0 01", "ok", "error 101"},
    {"msgReqReqSetImageDEffect", CALL { ucd.msgReqReqSetImageDEffect(9, outcome); },
     "09000000 0400 2040 09", "20C0 01", "ok", "error 101"},
    {"msgReqUpdateOrientation", CALL { static_cast<void>(outcome), ucd.msgReqUpdateOrientation(kOrientation); }, "",
     nullptr, nullptr, nullptr},
    {"newMsgReqUpdateOrientation", CALL { static_cast<void>(outcome), ucd.newMsgReqUpdateOrientation(orientation()); },
     "", nullptr, nullptr, nullptr},
    {"msgReqGetEVIndexWithRebackBlock", CALL { ucd.msgReqGetEVIndexWithRebackBlock(outcome); },
     "08000000 0400 2240", "22C0 01 3412", "ok 4660", "error 101 0"},
    {"msgReqSetFlicker", CALL { ucd.msgReqSetFlicker(1, outcome); },
     "09000000 0400 2340 01", "23C0 01", "ok", "error 101"},
    {"msgReqGetFlickerWithRebackBlock", CALL { ucd.msgReqGetFlickerWithRebackBlock(outcome); },
     "08000000 0400 2440", "24C0 01 02", "ok 2", "error 101 0"},
    {"msgReqGetUUIDWithRebackBlock", CALL { ucd.msgReqGetUUIDWithRebackBlock(outcome); },
     "08000000 0400 2540", "25C0 01 41", "ok \"A\"", "error 101 none", Flag::yes, Extra::partOfTheValue},
    {"msgReqGetOriginOffset", CALL { ucd.msgReqGetOriginOffset(1, 2, outcome); },
     "0A000000 0400 2640 01 02", "26C0 01 01000000 02000000 03000000 04000000 05000000 FFFFFFFF E00B F005",
     "ok 0100000002000000030000000400000005000000ffffffffe00bf005",
     "error 101 00000000000000000000000000000000000000000000000000000000"},
    {"msgReqSetOriginOffset",
     CALL { ucd.msgReqSetOriginOffset(1, 2, {{1, 2, 3}, {4, 5, -1}, 3040, 1520}, outcome); },
     "26000000 0400 2740 01 02 01000000 02000000 03000000 04000000 05000000 FFFFFFFF E00B F005", "27C0 01", "ok",
     "error 101"},
    {"msgReqSetActiveTime", CALL { ucd.msgReqSetActiveTime(1, 2, outcome); },
     "10000000 0400 2940 01000000 02000000", "29C0 01", "ok", "error 101"},
    {"msgReqGetActiveTimeWithRebackBlock", CALL { ucd.msgReqGetActiveTimeWithRebackBlock(outcome); },
     "08000000 0400 2A40", "2AC0 01 01000000 FEFFFFFF", "ok 1 -2", "error 101 0 0"},
    {"msgReqSetRecTimeLimit", CALL { ucd.msgReqSetRecTimeLimit(0x105, outcome); },
     "09000000 0400 2B40 05", "2BC0 01", "ok", "error 101"},
    {"msgReqGetRecTimeLimitWithRebackBlock", CALL { ucd.msgReqGetRecTimeLimitWithRebackBlock(outcome); },
     "08000000 0400 2C40", "2CC0 01 FF", "ok 255", "error 101 0"},
    {"msgReqSwitchAudioStreamType", CALL { ucd.msgReqSwitchAudioStreamType(1, outcome); },
     "09000000 0400 0E00 01", "0E80 01", "ok", "error 101"},
    {"msgReqSetPhotoExtraInfoWithFileName",
     CALL { ucd.msgReqSetPhotoExtraInfoWithFileName("a", data({5}), outcome); },
     "49000000 0400 3340 6100000000000000000000000000000000000000000000000000000000000000"
     "0000000000000000000000000000000000000000000000000000000000000000 05",
     "33C0 01", "ok", "error 101"},
    {"msgReqSetVideoExtraInfoWithFileName",
     CALL { ucd.msgReqSetVideoExtraInfoWithFileName("a", std::nullopt, outcome); },
     "48000000 0400 3440 6100000000000000000000000000000000000000000000000000000000000000"
     "0000000000000000000000000000000000000000000000000000000000000000",
     "34C0 01", "ok", "error 101"},
    {"msgReqGetVideoExtraInfoWithFileName", CALL { ucd.msgReqGetVideoExtraInfoWithFileName("ab", outcome); },
     "0B000000 0400 3540 616200", "35C0 01", "ok none", "error 101 none", Flag::yes, Extra::partOfTheValue},
    {"msgReqSetPhotoSelfTimer", CALL { ucd.msgReqSetPhotoSelfTimer(10, outcome); },
     "09000000 0400 2F40 0A", "2FC0 01", "ok", "error 101"},
    {"msgReqGetPhotoSelfTimerWithRebackBlock", CALL { ucd.msgReqGetPhotoSelfTimerWithRebackBlock(outcome); },
     "08000000 0400 3040", "30C0 01 0A", "ok 10", "error 101 0"},
    {"msgReqSetGPSTimeout", CALL { ucd.msgReqSetGPSTimeout(300, outcome); },
     "0A000000 0400 3140 2C00", "31C0 01", "ok", "error 101"},
    {"msgReqGetGPSTimeoutWithRebackBlock", CALL { ucd.msgReqGetGPSTimeoutWithRebackBlock(outcome); },
     "08000000 0400 3240", "32C0 01 2C01", "ok 44", "error 101 0"},
    {"msgReqSetCalibWBGain", CALL { ucd.msgReqSetCalibWBGain({1, 2, {3, -4, 5, 6}}, outcome); },
     "12000000 0400 3640 01 02 0300 FCFF 0500 0600", "36C0 01", "ok", "error 101"},
    {"msgReqGetCalibWBGainWithRebackBlock", CALL { ucd.msgReqGetCalibWBGainWithRebackBlock(outcome); },
     "08000000 0400 3740", "37C0 01 01 02 0300 FCFF 0500 0600", "ok 01020300fcff05000600",
     "error 101 00000000000000000000"},
    {"msgReqSetCalibVignetteLuma", CALL { ucd.msgReqSetCalibVignetteLuma({1, 2, {3, -4}}, outcome); },
     "0E000000 0400 3840 01 02 0300 FCFF", "38C0 01", "ok", "error 101"},
    {"msgReqGetCalibVignetteLumaWithRebackBlock", CALL { ucd.msgReqGetCalibVignetteLumaWithRebackBlock(outcome); },
     "08000000 0400 3940", "39C0 01 01 02 0300 FCFF", "ok 01020300fcff", "error 101 000000000000"},
    {"msgReqGetCalibWBEnableWithRebackBlock", CALL { ucd.msgReqGetCalibWBEnableWithRebackBlock(outcome); },
     "08000000 0400 3A40", "3AC0 01 01", "ok 1", "error 101 0"},
    {"msgReqGetCalibVigEnableWithRebackBlock", CALL { ucd.msgReqGetCalibVigEnableWithRebackBlock(outcome); },
     "08000000 0400 3B40", "3BC0 01 01", "ok 1", "error 101 0"},
    {"msgReqGetLensIndexWithRebackBlock", CALL { ucd.msgReqGetLensIndexWithRebackBlock(outcome); },
     "08000000 0400 3C40", "3CC0 01 04030201", "ok 16909060", "error 101 0"},
    {"msgReqSetTriplePressMode", CALL { ucd.msgReqSetTriplePressMode(2, outcome); },
     "09000000 0400 3D40 02", "3DC0 01", "ok", "error 101"},
    {"msgReqGetTriplePressModeWithRebackBlock", CALL { ucd.msgReqGetTriplePressModeWithRebackBlock(outcome); },
     "08000000 0400 3E40", "3EC0 01 02", "ok 2", "error 101 0"},
    {"msgReqSetTimelapseInfo", CALL { ucd.msgReqSetTimelapseInfo({0x01020304, 5, 6, {7, 8}}, outcome); },
     "10000000 0400 3F40 04030201 05 06 07 08", "3FC0 01", "ok", "error 101"},
    {"msgReqGetTimelapseInfoWithRebackBlock", CALL { ucd.msgReqGetTimelapseInfoWithRebackBlock(outcome); },
     "08000000 0400 4040", "40C0 01 04030201 05 06 07 08", "ok 0403020105060708", "error 101 0000000000000000"},
    {"msgReqDelFileCancelWithRebackBlock", CALL { ucd.msgReqDelFileCancelWithRebackBlock(outcome); },
     "08000000 0400 4140", "41C0 01", "ok", "error 101"},
    {"msgReqGetVideoTimeRemainingWithRebackBlock", CALL { ucd.msgReqGetVideoTimeRemainingWithRebackBlock(outcome); },
     "08000000 0400 4240", "42C0 01 FFFFFFFF", "ok 4294967295", "error 101 0"},
    {"msgReqGetPhotoShotsRemainingWithRebackBlock",
     CALL { ucd.msgReqGetPhotoShotsRemainingWithRebackBlock(outcome); },
     "08000000 0400 4340", "43C0 01 64000000", "ok 100", "error 101 0"},
    {"msgReqSetCalibVigGain", CALL { ucd.msgReqSetCalibVigGain({1, 2, {1, 2, 3, 4, 5, -1}}, outcome); },
     "16000000 0400 4440 01 02 0100 0200 0300 0400 0500 FFFF", "44C0 01", "ok", "error 101"},
    {"msgReqGetCalibVigGainWithRebackBlock", CALL { ucd.msgReqGetCalibVigGainWithRebackBlock(outcome); },
     "08000000 0400 4540", "45C0 01 01 02 0100 0200 0300 0400 0500 FFFF", "ok 010201000200030004000500ffff",
     "error 101 0000000000000000000000000000"},
    {"msgReqSetTimelapseEVBias", CALL { ucd.msgReqSetTimelapseEVBias(-3, outcome); },
     "0A000000 0400 4640 FDFF", "46C0 01", "ok", "error 101"},
    {"msgReqGetTimelapseEVBiasWithRebackBlock", CALL { ucd.msgReqGetTimelapseEVBiasWithRebackBlock(outcome); },
     "08000000 0400 4740", "47C0 01 FDFF", "ok -3", "error 101 0"},
    {"msgReqSetAudioBitrate", CALL { ucd.msgReqSetAudioBitrate(128000, outcome); },
     "0C000000 0400 1300 00F40100", "1380 01", "ok", "error 101"},
    {"msgReqGetAudioBitrateWithRebackBlock", CALL { ucd.msgReqGetAudioBitrateWithRebackBlock(outcome); },
     "08000000 0400 4840", "48C0 01 00F40100", "ok 128000", "error 101 0"},
};
#undef CALL
// clang-format on

class CatalogueExchange : public CommandTest, public testing::WithParamInterface<Exchange> {
 protected:
  // Makes the request and has it answered with code and body.
  std::string outcomeOf(const Bytes& codeAndBody) {
    Outcome outcome;
    GetParam().call(ucd(), outcome);
    host.runUntilIdle();
    answer(hexText(codeAndBody));
    EXPECT_EQ(outcome.calls, 1);
    return outcome.text;
  }

  Bytes reply() const { return hex(GetParam().reply); }
  bool isSilent() const { return GetParam().reply == nullptr; }
};

TEST_P(CatalogueExchange, WritesExactlyThisFrame) {
  Outcome outcome;
  GetParam().call(ucd(), outcome);
  EXPECT_EQ(written(), hex(GetParam().request));
  EXPECT_EQ(outcome.calls, 0);
}

TEST_P(CatalogueExchange, TakesTheShortestGoodReply) {
  if (isSilent()) return;
  EXPECT_EQ(outcomeOf(reply()), GetParam().result);
}

TEST_P(CatalogueExchange, RefusesAReplyThatLacksOneByte) {
  if (isSilent() || GetParam().extra == Extra::partOfTheValue) return;
  Bytes shorter = reply();
  shorter.pop_back();
  EXPECT_EQ(outcomeOf(shorter), GetParam().refusedResult);
}

TEST_P(CatalogueExchange, RefusesAReplyWithoutABody) {
  if (isSilent()) return;
  Bytes codeAlone = reply();
  codeAlone.resize(2);
  EXPECT_EQ(outcomeOf(codeAlone), GetParam().refusedResult);
}

TEST_P(CatalogueExchange, IsRefusedWhereTheFlagIsZero) {
  if (isSilent() || GetParam().flag == Flag::no) return;
  Bytes refusal = reply();
  refusal[2] = 0;
  EXPECT_EQ(outcomeOf(refusal), GetParam().refusedResult);
}

TEST_P(CatalogueExchange, TakesAnyFlagButZeroForYes) {
  if (isSilent() || GetParam().flag == Flag::no) return;
  Bytes agreement = reply();
  agreement[2] = 0x80;
  EXPECT_EQ(outcomeOf(agreement), GetParam().result);
}

TEST_P(CatalogueExchange, IgnoresBytesAfterTheLastField) {
  if (isSilent() || GetParam().extra == Extra::partOfTheValue) return;
  EXPECT_EQ(outcomeOf(join(reply(), bytes({1, 2, 3}))), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Catalogue, CatalogueExchange, testing::ValuesIn(kExchanges),
                         [](const auto& one) { return std::string(one.param.operation); });

// The rows that need a story of their own stand in zel_camera_ucd_test.cc; together they are all.
TEST(CatalogueTest, HasATestForEveryFamily) {
  std::set<std::uint16_t> requests = {0x4017, 0x4021, 0x4028, 0x402D, 0x402E};
  for (const Exchange& exchange : kExchanges) {
    const Bytes frame = hex(exchange.request);
    if (!frame.empty()) requests.insert(loadLittleEndian<std::uint16_t>(frame.data() + 6));
  }
  std::set<std::uint16_t> known;
  for (const Family& one : kFamilies) known.insert(static_cast<std::uint16_t>(one.request));
  EXPECT_EQ(requests, known);
}

// What hosts and cameras know a family by: they use these numbers with sendMsg and on the wire.
struct KnownFamily {
  const char* registering;
  int type;
  int request;
};
// clang-format off
const KnownFamily kKnownFamilies[] = {
    {"registerMsgCmdStartVideo", 4, 0x0004},
    {"registerMsgCmdStopVP", 6, 0x0006},
    {"registerMsgCmdShutter", 7, 0x0007},
    {"registerMsgCmdShutterExtra", 8, 0x0011},
    {"registerMsgCmdStartRecord", 9, 0x0008},
    {"registerMsgCmdStartRecordExtra", 10, 0x0012},
    {"registerMsgCmdStartRecordPTS", 11, 0x0014},
    {"registerMsgCmdStopRecord", 12, 0x0009},
    {"registerMsgCmdSetVideoRes", 13, 0x000A},
    {"registerMsgCmdRecordCancel", 14, 0x000B},
    {"registerMsgCmdSetVideoBitrate", 15, 0x000C},
    {"registerMsgCmdShutterAEB", 16, 0x000F},
    {"registerMsgReqSetPhotoSize", 19, 0x4002},
    {"registerMsgReqSetLocalTime", 23, 0x4006},
    {"registerMsgReqSysctrl", 24, 0x4007},
    {"registerMsgReqSysctrlCancel", 25, 0x4008},
    {"registerMsgReqSetKeyFunc0", 29, 0x400C},
    {"registerMsgReqSetMute", 30, 0x400D},
    {"registerMsgReqGetCardState", 31, 0x400E},
    {"registerMsgReqMediaOffset", 32, 0x400F},
    {"registerMsgReqSetMediaOffset", 33, 0x4010},
    {"registerMsgReqUpdateGps", 27, 0x400A},
    {"registerMsgReqUpdateGyro", 34, 0x4011},
    {"registerMsgReqGetSerialNumber", 35, 0x4012},
    {"registerMsgReqSetSerialNumber", 36, 0x4013},
    {"registerMsgReqSetIPSwitchMode", 37, 0x4014},
    {"registerMsgReqSetAEEVBias", 38, 0x4015},
    {"registerMsgReqSetAEMeterMode", 39, 0x4016},
    {"registerMsgReqSetAEMMWeight", 40, 0x4017},
    {"registerMsgReqSetStillPMode", 41, 0x4018},
    {"registerMsgReqSetMEParam", 42, 0x4019},
    {"registerMsgReqSetWBMode", 43, 0x401A},
    {"registerMsgReqSetImageBrightness", 44, 0x401B},
    {"registerMsgReqSetImageContrast", 45, 0x401C},
    {"registerMsgReqSetImageSaturation", 46, 0x401D},
    {"registerMsgReqSetImageHue", 47, 0x401E},
    {"registerMsgReqSetImageSharpness", 48, 0x401F},
    {"registerMsgReqSetImageDEffect", 49, 0x4020},
    {"registerMsgReqGetEVIndex", 51, 0x4022},
    {"registerMsgReqSetFlicker", 52, 0x4023},
    {"registerMsgReqGetFlicker", 53, 0x4024},
    {"registerMsgReqGetUUID", 54, 0x4025},
    {"registerMsgReqGetOriginOffset", 55, 0x4026},
    {"registerMsgReqSetOriginOffset", 56, 0x4027},
    {"registerMsgReqGetFileMnd", 57, 0x4028},
    {"registerMsgReqSetActiveTime", 58, 0x4029},
    {"registerMsgReqGetActiveTime", 59, 0x402A},
    {"registerMsgReqSetRecLimitTime", 60, 0x402B},
    {"registerMsgReqGetRecLimitTime", 61, 0x402C},
    {"registerMsgReqCreateTxtFile", 62, 0x402D},
    {"registerMsgReqSwitchAudioStreamType", 63, 0x000E},
    {"registerMsgReqSendSyncData", 64, 0x402E},
    {"registerMsgReqSetVideoExtraInfo", 66, 0x4034},
    {"registerMsgReqSetPhotoExtraInfo", 65, 0x4033},
    {"registerMsgReqGetVideoExtraInfo", 67, 0x4035},
    {"registerMsgReqGetPhotoSelfTimer", 69, 0x4030},
    {"registerMsgReqSetPhotoSelfTimer", 68, 0x402F},
    {"registerMsgReqSetGPSTimeout", 70, 0x4031},
    {"registerMsgReqGetGPSTimeout", 71, 0x4032},
    {"registerMsgReqSetCalibWBGain", 72, 0x4036},
    {"registerMsgReqGetCalibWBGain", 73, 0x4037},
    {"registerMsgReqSetCalibVigneteLuma", 74, 0x4038},
    {"registerMsgReqGetCalibVignetteLuma", 75, 0x4039},
    {"registerMsgReqGetCalibWBEnable", 76, 0x403A},
    {"registerMsgReqGetCalibVigEnable", 77, 0x403B},
    {"registerMsgReqGetLensIndex", 78, 0x403C},
    {"registerMsgReqSetTriplePressMode", 79, 0x403D},
    {"registerMsgReqGetTriplePressMode", 80, 0x403E},
    {"registerMsgReqSetTimelapseInfo", 81, 0x403F},
    {"registerMsgReqGetTimeLapseInfo", 82, 0x4040},
    {"registerMsgReqDelFileCancel", 83, 0x4041},
    {"registerMsgReqGetVideoTimeRemaining", 84, 0x4042},
    {"registerMsgReqGetPhotoShotsRemaining", 85, 0x4043},
    {"registerMsgReqSetCalibVigGain", 86, 0x4044},
    {"registerMsgReqGetCalibVigGain", 87, 0x4045},
    {"registerMsgReqSetTimelapseEVBias", 88, 0x4046},
    {"registerMsgReqGetTimelapseEVBias", 89, 0x4047},
    {"registerMsgReqSetAudioBitrate", 90, 0x0013},
    {"registerMsgReqGetAudioBitrate", 91, 0x4048},
    {"registerMsgReqBattery", 18, 0x4001},
    {"registerMsgReqUpdateOrientation", 50, 0x4021},
};
// clang-format on

TEST(CatalogueTest, RegistersTheseFamiliesInThisOrder) {
  ASSERT_EQ(std::size(kFamilies), std::size(kKnownFamilies));
  for (std::size_t row = 0; row < std::size(kFamilies); ++row) {
    const KnownFamily& known = kKnownFamilies[row];
    EXPECT_EQ(kFamilies[row].registering, known.registering);
    EXPECT_EQ(static_cast<int>(kFamilies[row].type), known.type) << known.registering;
    EXPECT_EQ(static_cast<int>(kFamilies[row].request), known.request) << known.registering;
  }
}

TEST(CatalogueTest, RegistersTheBatteryAfterTheEventsAndTheOrientationNever) {
  for (const Family& one : kFamilies) {
    const Registered when = one.registering == "registerMsgReqBattery"             ? Registered::afterTheEvents
                            : one.registering == "registerMsgReqUpdateOrientation" ? Registered::never
                                                                                   : Registered::beforeTheEvents;
    EXPECT_EQ(one.registered, when) << one.registering;
  }
}

TEST(CatalogueTest, KnowsTheOrientationThatIsNeverSent) {
  constexpr const Family& kUpdate = family("registerMsgReqUpdateOrientation");
  EXPECT_EQ(kUpdate.body.size(), 16u);
  EXPECT_EQ(kUpdate.body.begin()->key, "orientationData");
  EXPECT_EQ(kUpdate.reply.form, Reply::Form::none);
}

TEST_F(CommandTest, KnowsNoReplyOfAFamilyThatHasNone) {
  answer("0AC0 01");
  answer("11C0 01");
  EXPECT_EQ(stack.statistics().dropped.unregisteredCode, 2u);
}

TEST(CatalogueTest, HasEightyOneFamilies) { EXPECT_EQ(std::size(kFamilies), 81u); }

TEST(CatalogueTest, AnswersEveryRequestUnderItsCodeWithTheHighestBit) {
  EXPECT_EQ(replyTo(UcdCode{11}), UcdCode{32779});
  EXPECT_EQ(replyTo(UcdCode{16385}), UcdCode{49153});
}

TEST(CatalogueTest, LeavesTheseTypesUnused) {
  constexpr std::int16_t kUnused[] = {5, 17, 20, 21, 22, 26, 28, 92, 99};
  for (const std::int16_t unused : kUnused) {
    for (const Family& one : kFamilies) EXPECT_NE(one.type, MsgType{unused}) << one.registering;
  }
}

}  // namespace
}  // namespace zel::test

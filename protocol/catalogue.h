#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include <ZELTarkaSDK/ZELMessageKeys.h>

#include "protocol/field.h"
#include "protocol/reply.h"

namespace zel {

// The command layer's number of a family of messages, and a code on the wire. Two types, so that they cannot be mixed
// up.
enum class MsgType : std::int16_t {};
enum class UcdCode : std::uint16_t {};

// A reply has its request's code with the highest bit set.
constexpr UcdCode replyTo(UcdCode request) { return UcdCode(static_cast<std::uint16_t>(request) | 0x8000); }

// When the engine registers a family.
enum class Registered {
  beforeTheEvents,
  afterTheEvents,
  never,
};

// One family of requests and their replies. `registering` is the operation that registers it.
struct Family {
  std::string_view registering;
  MsgType type;
  UcdCode request;
  FieldList body;
  Reply reply;
  Registered registered = Registered::beforeTheEvents;

  consteval Family(std::string_view name, std::int16_t typeNumber, std::uint16_t code, FieldList fields, Reply answer,
                   Registered when = Registered::beforeTheEvents)
      : registering(name),
        type(MsgType{typeNumber}),
        request(UcdCode{code}),
        body(fields),
        reply(answer),
        registered(when) {}
};

namespace catalogue {
using namespace field;
using namespace key;

inline constexpr Field gps = record<ZELGpsData>("GPS record (24)", gpsData);
inline constexpr Field gyro = record<ZELGyroData>("gyro record (24)", gyroData);
inline constexpr Field orientation = record<ZELOrientationData>("orientation record (16)", orientationData);
inline constexpr Field bracket = record<aeb_info>("aeb_info (10)", nsValue1);
inline constexpr Field manualExposure = record<ZELIPMEParam>("ZELIPMEParam (2)", exposureParam);
inline constexpr Field weights = record<ZELIPAEMMWeight>("ZELIPAEMMWeight (96)", meteringWeights);
inline constexpr Field originOffset = record<ZELOriginOffset>("origin offset record (28)", nsValue1);
inline constexpr Field wbGain = record<calib_wb_gain>("calib_wb_gain (10)", nsValue1);
inline constexpr Field vignetteLuma = record<calib_vignette_luma>("calib_vignette_luma (6)", nsValue1);
inline constexpr Field vignetteGain = record<calib_vignette_gain>("calib_vignette_gain (14)", nsValue1);
inline constexpr Field timelapse = record<timelapse_info>("timelapse_info (8)", nsValue1);
inline constexpr Field name32 = nameField<32>("UTF-8 name, zero-filled (32)", nsString);
inline constexpr Field name64 = nameField<64>("UTF-8 name, zero-filled (64)", nsString);
inline constexpr Reply capture =
    custom(value(u32(fileTime), u64(fileSize), toldName(fileName)), decodeCaptureResult, "longer than 12 bytes");
inline constexpr Reply textFile = [] {
  Reply reply =
      custom(flag(u8OfInt(intValue)), decodeTextFileResult, "where the flag is 0, `intValue` and the error together");
  reply.valuesWithRefusal = true;
  return reply;
}();
inline constexpr Reply anything = custom(value(), decodeAnything, "not read, always a success");

// All families, in the order in which they are registered: the registering operation, message type, request code,
// request body, reply.
// clang-format off
inline constexpr Family kFamilies[] = {
    // registering operation               type  request  request body                                  reply
    {"registerMsgCmdStartVideo",               4, 0x0004, {u8(ucharValue)},                              flag(u8(ucharValue))},
    {"registerMsgCmdStopVP",                   6, 0x0006, {},                                            flag()},
    {"registerMsgCmdShutter",                  7, 0x0007, {gps, gyro, orientation},                      capture},
    {"registerMsgCmdShutterExtra",             8, 0x0011, {gps, gyro, orientation, rest(nsData)},        capture},
    {"registerMsgCmdStartRecord",              9, 0x0008, {gps, gyro, orientation},                      flag()},
    {"registerMsgCmdStartRecordExtra",        10, 0x0012, {gps, gyro, orientation, rest(nsData)},        flag()},
    {"registerMsgCmdStartRecordPTS",          11, 0x0014, {gps, gyro, orientation, rest(nsData)},        flag(s64(int64Value))},
    {"registerMsgCmdStopRecord",              12, 0x0009, {},                                            capture},
    {"registerMsgCmdSetVideoRes",             13, 0x000A, {u8(ucharValue)},                              value(u8(ucharValue))},
    {"registerMsgCmdRecordCancel",            14, 0x000B, {},                                            flag()},
    {"registerMsgCmdSetVideoBitrate",         15, 0x000C, {u8(ucharValue), u8(ucharValue2)},             flag(u8(ucharValue))},
    {"registerMsgCmdShutterAEB",              16, 0x000F, {gps, gyro, orientation, bracket, rest(nsData)}, capture},
    {"registerMsgReqSetPhotoSize",            19, 0x4002, {u8(ucharValue)},                              value(u8(ucharValue))},
    {"registerMsgReqSetLocalTime",            23, 0x4006, {s32(intValue), s32(intValue2)},               flag()},
    {"registerMsgReqSysctrl",                 24, 0x4007, {u8(ucharValue), u8(ucharValue2)},             flag()},
    {"registerMsgReqSysctrlCancel",           25, 0x4008, {u8(ucharValue)},                              flag()},
    {"registerMsgReqSetKeyFunc0",             29, 0x400C, {u8(ucharValue)},                              flag()},
    {"registerMsgReqSetMute",                 30, 0x400D, {u8(ucharValue)},                              flag()},
    {"registerMsgReqGetCardState",            31, 0x400E, {},                                            value(u8(ucharValue), u64(uint64Value), u64(uint64Value2))},
    {"registerMsgReqMediaOffset",             32, 0x400F, {u8(ucharValue), u8(ucharValue2)},             flag(offsetText(nsString))},
    {"registerMsgReqSetMediaOffset",          33, 0x4010, {u8(ucharValue), u8(ucharValue2), offsetText(nsString)}, flag()},
    {"registerMsgReqUpdateGps",               27, 0x400A, {gps},                                         unanswered},
    {"registerMsgReqUpdateGyro",              34, 0x4011, {gyro},                                        unanswered},
    {"registerMsgReqGetSerialNumber",         35, 0x4012, {},                                            flag(ascii(nsString))},
    {"registerMsgReqSetSerialNumber",         36, 0x4013, {ascii(nsString)},                             flag()},
    {"registerMsgReqSetIPSwitchMode",         37, 0x4014, {u8(ucharValue)},                              flag()},
    {"registerMsgReqSetAEEVBias",             38, 0x4015, {s16(shortValue)},                             flag()},
    {"registerMsgReqSetAEMeterMode",          39, 0x4016, {u8(ucharValue)},                              flag()},
    {"registerMsgReqSetAEMMWeight",           40, 0x4017, {weights},                                     flag()},
    {"registerMsgReqSetStillPMode",           41, 0x4018, {u8(ucharValue), u8(ucharValue2)},             flag()},
    {"registerMsgReqSetMEParam",              42, 0x4019, {u8(ucharValue), manualExposure},              flag()},
    {"registerMsgReqSetWBMode",               43, 0x401A, {u8(ucharValue)},                              flag()},
    {"registerMsgReqSetImageBrightness",      44, 0x401B, {s16(shortValue)},                             flag()},
    {"registerMsgReqSetImageContrast",        45, 0x401C, {u16(ushortValue)},                            flag()},
    {"registerMsgReqSetImageSaturation",      46, 0x401D, {u16(ushortValue)},                            flag()},
    {"registerMsgReqSetImageHue",             47, 0x401E, {u8(ucharValue)},                              flag()},
    {"registerMsgReqSetImageSharpness",       48, 0x401F, {u8(ucharValue)},                              flag()},
    {"registerMsgReqSetImageDEffect",         49, 0x4020, {u8(ucharValue)},                              flag()},
    {"registerMsgReqGetEVIndex",              51, 0x4022, {},                                            flag(u16(ushortValue))},
    {"registerMsgReqSetFlicker",              52, 0x4023, {u8(ucharValue)},                              flag()},
    {"registerMsgReqGetFlicker",              53, 0x4024, {},                                            flag(u8(ucharValue))},
    {"registerMsgReqGetUUID",                 54, 0x4025, {},                                            flag(ascii(nsString))},
    {"registerMsgReqGetOriginOffset",         55, 0x4026, {u8(ucharValue), u8(ucharValue2)},             flag(originOffset)},
    {"registerMsgReqSetOriginOffset",         56, 0x4027, {u8(ucharValue), u8(ucharValue2), originOffset}, flag()},
    {"registerMsgReqGetFileMnd",              57, 0x4028, {terminatedName(nsString)},                    flag(videoMnd(nsValue1))},
    {"registerMsgReqSetActiveTime",           58, 0x4029, {s32(intValue), s32(intValue2)},               flag()},
    {"registerMsgReqGetActiveTime",           59, 0x402A, {},                                            flag(s32(intValue), s32(intValue2))},
    {"registerMsgReqSetRecLimitTime",         60, 0x402B, {u8OfInt(intValue)},                           flag()},
    {"registerMsgReqGetRecLimitTime",         61, 0x402C, {},                                            flag(u8OfInt(intValue))},
    {"registerMsgReqCreateTxtFile",           62, 0x402D, {name32, u16OfInt(intValue), rest(nsData)},    textFile},
    {"registerMsgReqSwitchAudioStreamType",   63, 0x000E, {u8(ucharValue)},                              flag()},
    {"registerMsgReqSendSyncData",            64, 0x402E, {rest(nsData)},                                anything},
    {"registerMsgReqSetVideoExtraInfo",       66, 0x4034, {name64, rest(nsData)},                        flag()},
    {"registerMsgReqSetPhotoExtraInfo",       65, 0x4033, {name64, rest(nsData)},                        flag()},
    {"registerMsgReqGetVideoExtraInfo",       67, 0x4035, {terminatedName(nsString)},                    flag(rest(nsData))},
    {"registerMsgReqGetPhotoSelfTimer",       69, 0x4030, {},                                            flag(u8OfInt(intValue))},
    {"registerMsgReqSetPhotoSelfTimer",       68, 0x402F, {u8(ucharValue)},                              flag()},
    {"registerMsgReqSetGPSTimeout",           70, 0x4031, {lowByteOfU16(ushortValue)},                   flag()},
    {"registerMsgReqGetGPSTimeout",           71, 0x4032, {},                                            flag(lowByteOfU16(ushortValue))},
    {"registerMsgReqSetCalibWBGain",          72, 0x4036, {wbGain},                                      flag()},
    {"registerMsgReqGetCalibWBGain",          73, 0x4037, {},                                            flag(wbGain)},
    {"registerMsgReqSetCalibVigneteLuma",     74, 0x4038, {vignetteLuma},                                flag()},  // one "t" is the interface's spelling
    {"registerMsgReqGetCalibVignetteLuma",    75, 0x4039, {},                                            flag(vignetteLuma)},
    {"registerMsgReqGetCalibWBEnable",        76, 0x403A, {},                                            flag(u8(ucharValue))},
    {"registerMsgReqGetCalibVigEnable",       77, 0x403B, {},                                            flag(u8(ucharValue))},
    {"registerMsgReqGetLensIndex",            78, 0x403C, {},                                            flag(u32(uintValue))},
    {"registerMsgReqSetTriplePressMode",      79, 0x403D, {u8(ucharValue)},                              flag()},
    {"registerMsgReqGetTriplePressMode",      80, 0x403E, {},                                            flag(u8(ucharValue))},
    {"registerMsgReqSetTimelapseInfo",        81, 0x403F, {timelapse},                                   flag()},
    {"registerMsgReqGetTimeLapseInfo",        82, 0x4040, {},                                            flag(timelapse)},  // so is the "L"
    {"registerMsgReqDelFileCancel",           83, 0x4041, {},                                            flag()},
    {"registerMsgReqGetVideoTimeRemaining",   84, 0x4042, {},                                            flag(u32(uintValue))},
    {"registerMsgReqGetPhotoShotsRemaining",  85, 0x4043, {},                                            flag(u32(uintValue))},
    {"registerMsgReqSetCalibVigGain",         86, 0x4044, {vignetteGain},                                flag()},
    {"registerMsgReqGetCalibVigGain",         87, 0x4045, {},                                            flag(vignetteGain)},
    {"registerMsgReqSetTimelapseEVBias",      88, 0x4046, {s16(shortValue)},                             flag()},
    {"registerMsgReqGetTimelapseEVBias",      89, 0x4047, {},                                            flag(s16(shortValue))},
    {"registerMsgReqSetAudioBitrate",         90, 0x0013, {u32(uintValue)},                              flag()},
    {"registerMsgReqGetAudioBitrate",         91, 0x4048, {},                                            flag(u32(uintValue))},
    {"registerMsgReqBattery",                 18, 0x4001, {},                                            value(u8(ucharValue), u8(ucharValue2)), Registered::afterTheEvents},
    // Deliberate: never registered, so orientation updates are never sent. Cameras take the orientation from each
    // capture, and some cannot handle the update.
    {"registerMsgReqUpdateOrientation",       50, 0x4021, {orientation},                                 unanswered, Registered::never},
};
// clang-format on
}  // namespace catalogue

using catalogue::kFamilies;

void noRowBearsThisName();  // never defined: a call of it does not compile, and says why

// The family registered by the operation of this name; a wrong name does not compile.
consteval const Family& family(std::string_view registering) {
  const Family* const row = std::ranges::find(kFamilies, registering, &Family::registering);
  if (row == std::end(kFamilies)) noRowBearsThisName();
  return *row;
}

// A row's name as a template argument.
template <std::size_t size>
struct RowName {
  char text[size] = {};
  consteval RowName(const char (&name)[size]) { std::ranges::copy(name, text); }
};

// The family of that name: kRow<"registerMsgReqSetWBMode">.
template <RowName name>
inline constexpr const Family& kRow = family({name.text, sizeof(name.text) - 1});

// Whether all rows of a table differ in this column.
template <class Rows, class Column>
consteval bool distinct(const Rows& rows, Column column) {
  for (auto one = std::begin(rows); one != std::end(rows); ++one) {
    for (auto other = std::next(one); other != std::end(rows); ++other) {
      if ((*one).*column == (*other).*column) return false;
    }
  }
  return true;
}

static_assert(distinct(kFamilies, &Family::registering), "an operation registers two families");
static_assert(distinct(kFamilies, &Family::type), "a message type appears twice");
static_assert(distinct(kFamilies, &Family::request), "a request code appears twice");

}  // namespace zel

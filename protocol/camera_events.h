#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include <ZELTarkaSDK/ZELCameraNotificationProtocol.h>
#include <ZELTarkaSDK/ZELMessageFields.h>

#include "protocol/catalogue.h"

namespace zel {

// One event that the camera sends by itself. A payload that is too short for the fields leaves those at 0.
struct CameraEvent {
  std::string_view registering;
  ZELCameraEvent type;
  UcdCode code;
  FieldList fields;
  std::optional<ZELMessageFields> (*custom)(ByteView payload) = nullptr;  // instead of the fields
  std::string_view description = {};                                      // of a custom one, for people

  consteval CameraEvent(std::string_view name, ZELCameraEvent number, std::uint16_t wire, FieldList list)
      : registering(name), type(number), code(UcdCode{wire}), fields(list) {}
  consteval CameraEvent(std::string_view name, ZELCameraEvent number, std::uint16_t wire,
                        std::optional<ZELMessageFields> (*decode)(ByteView), std::string_view text)
      : registering(name), type(number), code(UcdCode{wire}), custom(decode), description(text) {}
};

std::optional<ZELMessageFields> decodeEvent(const CameraEvent& event, ByteView payload);

std::optional<ZELMessageFields> decodeUpdateDone(ByteView payload);
std::optional<ZELMessageFields> decodeRecordEvent(ByteView payload);
std::optional<ZELMessageFields> decodeOffsetEvent(ByteView payload);
std::optional<ZELMessageFields> decodeNothing(ByteView payload);

namespace catalogue {

inline constexpr std::string_view kRecordEvent =
    "`uintValue` u32, `uint64Value` u64, `nsString` UTF-8 name; below 12 bytes there is no u64, below 4 no u32, and "
    "the "
    "name begins where the numbers end; absent where no byte is left for it";

// All events, in the order in which they are registered.
inline constexpr CameraEvent kEvents[] = {
    // registering operation                 event type                          code    payload
    {"registerMsgCameraReqFWUpdateDone", ZELCameraEvent::firmwareUpdateDone, 0x6001, decodeUpdateDone,
     "result u8; `NSError` 101 where it is 0"},
    {"registerMsgCameraReqRecordAutoSplit", ZELCameraEvent::recordAutoSplit, 0x6002, decodeRecordEvent, kRecordEvent},
    {"registerMsgCameraReqBatteryUpdate",
     ZELCameraEvent::batteryUpdate,
     0x6003,
     {u8OfInt(intValue), u8OfInt(intValue2)}},
    {"registerMsgCameraReqBatteryLow", ZELCameraEvent::batteryLow, 0x6004, {u8OfInt(intValue)}},
    {"registerMsgCameraReqBatteryShutDown", ZELCameraEvent::batteryShutDown, 0x6005, {u8OfInt(intValue)}},
    {"registerMsgCameraReqCardState", ZELCameraEvent::cardState, 0x6006, {u8OfInt(intValue)}},
    {"registerMsgCameraReqKeyPressed", ZELCameraEvent::keyPressed, 0x6008, {u8OfInt(intValue)}},
    {"registerMsgCameraReqMediaOffset", ZELCameraEvent::mediaOffset, 0x6009, decodeOffsetEvent,
     "`intValue` u8, `nsString` media offset record (80) as text, empty where it is cut"},
    {"registerMsgCameraReqRecordCardRunout", ZELCameraEvent::recordCardRunout, 0x600A, decodeRecordEvent, kRecordEvent},
    {"registerMsgCameraReqRecordTimeRunout", ZELCameraEvent::recordTimeRunout, 0x600B, decodeRecordEvent, kRecordEvent},
    {"registerMsgCameraReqShutterState", ZELCameraEvent::shutterState, 0x600C, {u8OfInt(intValue)}},
    {"registerMsgCameraReqDelFileProgress",
     ZELCameraEvent::deleteProgress,
     0x600D,
     {u32(uintValue), u32(uintValue2), u32(uintValue3)}},
    {"registerMsgCameraReqGyroData", ZELCameraEvent::gyroData, 0x600E, decodeNothing, "not read; no value"},
};
}  // namespace catalogue

using catalogue::kEvents;

static_assert(distinct(kEvents, &CameraEvent::type), "an event type appears twice");
static_assert(distinct(kEvents, &CameraEvent::code), "an event code appears twice");

}  // namespace zel

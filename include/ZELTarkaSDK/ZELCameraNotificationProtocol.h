#pragma once

#include <cstdint>
#include <optional>

#include <ZELTarkaSDK/ZELMessageFields.h>
#include <ZELTarkaSDK/platform/export.h>

// The camera's events, and the keys of each event's value. Numbers that are missing in a short event are 0.
enum class ZELCameraEvent : std::int64_t {
  firmwareUpdateDone = 0,  // none; "NSError" (101) where the update failed
  recordAutoSplit = 1,     // "uintValue" file time, "uint64Value" file size, "nsString" file name
  batteryUpdate = 2,       // "intValue" power type, "intValue2" battery level
  batteryLow = 3,          // "intValue"
  batteryShutDown = 4,     // "intValue"
  cardState = 5,           // "intValue"
  keyPressed = 7,          // "intValue"
  mediaOffset = 8,         // "intValue", "nsString" the lens offset's text
  recordCardRunout = 9,    // as recordAutoSplit
  recordTimeRunout = 10,   // as recordAutoSplit
  gyroData = 11,           // no value
  shutterState = 12,       // "intValue"
  deleteProgress = 13,     // "uintValue", "uintValue2", "uintValue3"
};

// Receives the camera's events.
class ZEL_EXPORT ZELCameraNotificationProtocol {
 public:
  virtual ~ZELCameraNotificationProtocol() = default;

  // notificationType:value: - one event. type: a ZELCameraEvent; value: absent where the event has none.
  // Thread: session thread, with the command layer's lock held: do not add or remove receivers here, and do not wait
  //         for anything that needs the command layer.
  virtual void notificationType(std::int64_t type, const std::optional<ZELMessageFields>& value);
};

inline void ZELCameraNotificationProtocol::notificationType(std::int64_t, const std::optional<ZELMessageFields>&) {}

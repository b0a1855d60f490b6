#pragma once

#include <ZELTarkaSDK/CameraValues.h>
#include <ZELTarkaSDK/zel_requests.h>

#include "bindings/c/records.h"
#include "bindings/c/text.h"

// The structures that requests give, as C has them; made from bindings/requests.toml by tools/bindings/generate.py.

namespace zel::c {

inline zel_battery_result native(const Battery& from) {
  return {.size = 0, .power_type = from.powerType, .level = from.level};
}

inline zel_card_result native(const Card& from) {
  return {.size = 0, .state = from.state, .capacity_bytes = from.capacityBytes, .free_bytes = from.freeBytes};
}

inline zel_activation_time_result native(const ActivationTime& from) {
  return {.size = 0, .seconds = from.seconds, .time_zone_minutes_west = from.timeZoneMinutesWest};
}

inline zel_stored_file_result native(const StoredFile& from) {
  return {.size = 0, .time = from.time, .size_bytes = from.sizeBytes, .name = textOut(from.name)};
}

// All of these, and those of the records.
inline constexpr auto kNative = [](const auto& from) { return native(from); };

}  // namespace zel::c

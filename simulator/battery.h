#pragma once

#include <cstdint>
#include <vector>

#include "simulator/camera_events.h"
#include "simulator/wire.h"

namespace zel::simulator {

inline constexpr std::uint8_t kOnBattery = 1;  // every other power type is external

struct Battery {
  std::uint8_t powerType = kOnBattery;
  std::uint8_t level = 100;  // percent
};

inline constexpr std::uint8_t kLowBattery = 10;

// Drains one percent, and returns the camera's events.
inline std::vector<Bytes> drain(Battery& battery) {
  if (battery.powerType != kOnBattery || battery.level == 0) return {};
  --battery.level;
  std::vector<Bytes> events{message(kBatteryEvent, {battery.powerType, battery.level})};
  if (battery.level == kLowBattery) events.push_back(message(kBatteryLowEvent, {battery.level}));
  if (battery.level == 0) events.push_back(message(kShutDownEvent, {0}));
  return events;
}

}  // namespace zel::simulator

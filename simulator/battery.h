#pragma once

#include <cstdint>
#include <vector>

#include "simulator/wire.h"

namespace zel::simulator {

inline constexpr std::uint8_t kOnBattery = 1;  // every other power type is external

struct Battery {
  std::uint8_t powerType = kOnBattery;
  std::uint8_t level = 100;  // percent
};

inline constexpr std::uint8_t kLowBattery = 10;

// Drains one percent, and returns the camera's events.
std::vector<Bytes> drain(Battery& battery);

}  // namespace zel::simulator

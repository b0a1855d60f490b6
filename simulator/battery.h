#pragma once

#include <cstdint>
#include <vector>

#include "simulator/wire.h"

namespace zel::simulator {

inline constexpr std::uint8_t kOnBattery = 1;  // every other power type feeds the camera from outside

struct Battery {
  std::uint8_t powerType = kOnBattery;
  std::uint8_t level = 100;  // percent
};

inline constexpr std::uint8_t kLowBattery = 10;

// A while later: one percent less, and what the camera says of it.
std::vector<Bytes> drain(Battery& battery);

}  // namespace zel::simulator

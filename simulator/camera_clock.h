#pragma once

#include <cstdint>
#include <string>

#include "simulator/camera_world.h"

namespace zel::simulator {

// The time of day in the camera, by which its files are named.
class CameraClock {
 public:
  // Units:  seconds since 1970.
  // Owner:  the world outlives it.
  CameraClock(const CameraWorld& world, std::int64_t now);

  void set(std::int32_t now, std::int32_t minutesWest);

  std::uint32_t now() const { return static_cast<std::uint32_t>(seconds()); }

  // Local time as photos tell it, "2026:01:02 03:04:05".
  std::string photoTime() const;

  // PREFIX_20260102_030405_00_001SUFFIX by the local time; the number goes up with each.
  std::string nextFileName(const std::string& prefix, const std::string& suffix);

 private:
  std::int64_t seconds() const;
  std::string localTime(const char* format) const;

  const CameraWorld& world_;
  std::int64_t atStart_;  // of the world's clock
  std::int64_t secondsWest_ = 0;
  unsigned files_ = 0;
};

}  // namespace zel::simulator

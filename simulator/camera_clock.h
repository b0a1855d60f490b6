#pragma once

#include <cstdint>
#include <string>

#include "simulator/camera_world.h"

namespace zel::simulator {

// The camera's time of day, used in file names.
class CameraClock {
 public:
  // Units:  seconds since 1970.
  // Owner:  the world outlives it.
  CameraClock(const CameraWorld& world, std::int64_t now);

  void set(std::int32_t now, std::int32_t minutesWest);

  std::uint32_t now() const { return static_cast<std::uint32_t>(seconds()); }

  // Local time in the form of EXIF data, "2026:01:02 03:04:05".
  std::string photoTime() const { return localTime("%Y:%m:%d %H:%M:%S"); }

  // PREFIX_20260102_030405_00_001SUFFIX with the local time; the number increases with each file.
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

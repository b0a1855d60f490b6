#include "simulator/camera_clock.h"

#include <cstdio>
#include <ctime>

namespace zel::simulator {
namespace {

std::int64_t uptimeSeconds(const CameraWorld& world) {
  return std::chrono::duration_cast<std::chrono::seconds>(world.uptime()).count();
}

}  // namespace

CameraClock::CameraClock(const CameraWorld& world, std::int64_t now)
    : world_(world), atStart_(now - uptimeSeconds(world)) {}

void CameraClock::set(std::int32_t now, std::int32_t minutesWest) {
  atStart_ = now - uptimeSeconds(world_);
  secondsWest_ = std::int64_t{minutesWest} * 60;
}

std::int64_t CameraClock::seconds() const { return atStart_ + uptimeSeconds(world_); }

std::string CameraClock::localTime(const char* format) const {
  const std::time_t local = seconds() - secondsWest_;
  std::tm time{};
  gmtime_r(&local, &time);
  char text[32];
  std::strftime(text, sizeof text, format, &time);
  return text;
}

std::string CameraClock::nextFileName(const std::string& prefix, const std::string& suffix) {
  char number[16];
  std::snprintf(number, sizeof number, "%03u", ++files_);
  return prefix + localTime("_%Y%m%d_%H%M%S_00_") + number + suffix;
}

}  // namespace zel::simulator

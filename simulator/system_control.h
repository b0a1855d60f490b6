#pragma once

#include <cstdint>
#include <map>

#include "simulator/camera_world.h"

namespace zel::simulator {

inline constexpr std::uint8_t kShutDown = 1, kRestart = 2;

// Shutdown and restart, which are executed after a delay and can be cancelled until then.
class SystemControl {
 public:
  // Owner:  the world outlives it.
  explicit SystemControl(CameraWorld& world) : world_(world) {}

  // A second order of the same command replaces the first.
  // Errors: false for an unknown command, and for too many orders in a short time.
  bool order(std::uint8_t command, std::uint8_t seconds);

  // Errors: false when no such command is pending.
  bool cancel(std::uint8_t command) { return waiting_.erase(command) != 0; }

 private:
  void carryOut(std::uint8_t command);

  CameraWorld& world_;
  std::map<std::uint8_t, std::uint64_t> waiting_;  // the number of each command's pending order
  std::uint64_t orders_ = 0;
  int timers_ = 0;
};

}  // namespace zel::simulator

#pragma once

#include <chrono>
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
  bool order(std::uint8_t command, std::uint8_t seconds) {
    if ((command != kShutDown && command != kRestart) || timers_ == kMostTimers) return false;
    ++timers_;
    const std::uint64_t number = ++orders_;
    waiting_[command] = number;
    world_.later(std::chrono::seconds(seconds) + kForTheReply, [this, command, number] {
      --timers_;
      const auto waiting = waiting_.find(command);
      if (waiting == waiting_.end() || waiting->second != number) return;
      waiting_.erase(waiting);
      command == kRestart ? world_.restart() : world_.unplug();
    });
    return true;
  }

  // Errors: false when no such command is pending.
  bool cancel(std::uint8_t command) { return waiting_.erase(command) != 0; }

 private:
  static constexpr std::chrono::milliseconds kForTheReply{200};
  static constexpr int kMostTimers = 100;  // replaced or cancelled orders keep their timers for up to four minutes

  CameraWorld& world_;
  std::map<std::uint8_t, std::uint64_t> waiting_;  // the number of each command's pending order
  std::uint64_t orders_ = 0;
  int timers_ = 0;
};

}  // namespace zel::simulator

#include "simulator/system_control.h"

namespace zel::simulator {
namespace {

constexpr std::chrono::milliseconds kForTheReply{200};
constexpr int kMostTimers = 100;  // replaced or cancelled orders keep their timers for up to four minutes

}  // namespace

bool SystemControl::order(std::uint8_t command, std::uint8_t seconds) {
  if ((command != kShutDown && command != kRestart) || timers_ == kMostTimers) return false;
  ++timers_;
  const std::uint64_t number = ++orders_;
  waiting_[command] = number;
  world_.later(std::chrono::seconds(seconds) + kForTheReply, [this, command, number] {
    --timers_;
    const auto waiting = waiting_.find(command);
    if (waiting == waiting_.end() || waiting->second != number) return;
    waiting_.erase(waiting);
    carryOut(command);
  });
  return true;
}

void SystemControl::carryOut(std::uint8_t command) {
  if (command == kRestart) return world_.restart();
  world_.unplug();
}

}  // namespace zel::simulator

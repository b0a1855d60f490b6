#pragma once

#include <chrono>
#include <memory>

#include "platform/linux/linux_run_loop.h"

namespace zel::platform {

// A repeating timer. It keeps its phase: a period that was missed is skipped, not moved.
class LinuxTimer final : public Timer {
 public:
  static std::unique_ptr<Timer> start(const std::shared_ptr<LinuxRunLoop>& loop, double seconds, Task task);
  ~LinuxTimer() override;

 private:
  struct State;
  LinuxTimer(std::shared_ptr<LinuxRunLoop> loop, std::shared_ptr<State> state);

  const std::shared_ptr<LinuxRunLoop> loop_;
  const std::shared_ptr<State> state_;
};

// Whole clock ticks for that many seconds, at least 0.1 milliseconds and at most about 30 years.
std::chrono::steady_clock::duration steadyDuration(double seconds);

}  // namespace zel::platform

#include "platform/linux/linux_run_loop.h"

#include <algorithm>
#include <utility>

#include "base/has_memory_for.h"

namespace zel::platform {
namespace {

constexpr double kShortestSeconds = 1e-4;
constexpr double kLongestSeconds = 1e9;

// Lives as long as its handle or a pending wait. The Asio timer is used only inside calls of the loop.
struct TimerState : std::enable_shared_from_this<TimerState> {
  TimerState(LinuxRunLoop& itsLoop, std::chrono::steady_clock::duration itsPeriod, Task call)
      : loop(itsLoop), timer(itsLoop.context()), period(itsPeriod), task(std::move(call)) {}

  void wait() {
    timer.expires_at(due);
    timer.async_wait(loop.handler([self = shared_from_this()](const std::error_code& error) {
      if (!error) self->fire();
    }));
  }

  void fire() {
    if (!task.call()) return;
    const auto late = std::max(std::chrono::steady_clock::now() - due, period.zero());
    due += period * (1 + late / period);
    wait();
  }

  LinuxRunLoop& loop;  // outlives this: the handle and the wait keep it alive
  asio::steady_timer timer;
  const std::chrono::steady_clock::duration period;
  std::chrono::steady_clock::time_point due = std::chrono::steady_clock::now() + period;
  GuardedTask task;
};

// A repeating timer. It keeps its phase: a period that was missed is skipped, not moved.
class LinuxTimer final : public Timer {
 public:
  LinuxTimer(std::shared_ptr<LinuxRunLoop> loop, std::chrono::steady_clock::duration period, Task task)
      : loop_(std::move(loop)), state_(std::make_shared<TimerState>(*loop_, period, std::move(task))) {
    loop_->perform([state = state_] { state->wait(); });
  }
  ~LinuxTimer() override {
    state_->task.close();
    // Where there is no memory for that, the timer fires once more, for nothing.
    ifMemoryAllows([this] { loop_->perform([state = state_] { state->timer.cancel(); }); });
  }

 private:
  const std::shared_ptr<LinuxRunLoop> loop_;
  const std::shared_ptr<TimerState> state_;
};

}  // namespace

std::chrono::steady_clock::duration steadyDuration(double seconds) {
  const std::chrono::duration<double> bounded(std::clamp(seconds, kShortestSeconds, kLongestSeconds));
  return std::chrono::duration_cast<std::chrono::steady_clock::duration>(bounded);
}

std::unique_ptr<Timer> LinuxRunLoop::scheduleRepeating(double seconds, Task task) {
  return std::make_unique<LinuxTimer>(shared_from_this(), steadyDuration(seconds), std::move(task));
}

}  // namespace zel::platform

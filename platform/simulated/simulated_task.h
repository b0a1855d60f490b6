#pragma once

#include <functional>
#include <limits>
#include <memory>
#include <semaphore>
#include <thread>

#include <ZELTarkaSDK/platform/task.h>

namespace zel::platform {

inline constexpr double kNever = std::numeric_limits<double>::infinity();  // seconds

// A task of the simulated global queue. It has its own thread, so that it can sleep or wait anywhere. The thread runs
// only while the scheduler waits for it, so only one thread runs at a time.
// Owner:  the thread keeps the object alive. A task that is abandoned after it has begun is never resumed.
// Thread: as each operation says.
class SimulatedTask final : public std::enable_shared_from_this<SimulatedTask> {
 public:
  explicit SimulatedTask(Task task) : task_(std::move(task)) {}
  SimulatedTask(const SimulatedTask&) = delete;
  SimulatedTask& operator=(const SimulatedTask&) = delete;

  // Scheduler: whether it can continue now. If so, it takes the awaited semaphore.
  bool isReady(double now);
  // Scheduler: when it must continue at the latest; kNever while it waits without a deadline.
  double wakesAt() const { return wakesAt_; }
  // Scheduler: runs it until it sleeps, waits or ends.
  void resume();
  bool hasEnded() const { return ended_; }
  // Scheduler: never resumes it.
  void abandon();

  // The task itself: yields to the scheduler until that time, or until the condition is true or the deadline is
  // reached.
  void sleepUntil(double time);
  void waitUntil(std::function<bool()> condition, double deadline);

 private:
  void run();
  void yield();

  // Only one side at a time uses these; the semaphores pass them on.
  Task task_;
  double wakesAt_ = 0;
  std::function<bool()> condition_;
  bool ended_ = false;
  std::thread thread_;
  std::binary_semaphore go_{0};
  std::binary_semaphore stopped_{0};
};

}  // namespace zel::platform

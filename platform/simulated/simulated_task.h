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
// only while the scheduler and all other tasks wait, so only one thread runs at a time.
// Owner:  the thread keeps the object alive. A task that is abandoned after it has begun is never resumed.
// Thread: as each operation says.
class SimulatedTask final : public std::enable_shared_from_this<SimulatedTask> {
 public:
  // schedulersTurn: released when it ends.
  SimulatedTask(Task task, std::binary_semaphore& schedulersTurn)
      : task_(std::move(task)), schedulersTurn_(schedulersTurn) {}
  SimulatedTask(const SimulatedTask&) = delete;
  SimulatedTask& operator=(const SimulatedTask&) = delete;

  // Scheduler: whether it can continue now. If so, it takes the awaited semaphore.
  bool isReady(double now);
  // Scheduler: when it must continue at the latest; kNever while it waits without a deadline.
  double wakesAt() const { return wakesAt_; }
  // Scheduler, or the task that stops: lets it run until it stops or ends. Returns at once.
  void resume();
  bool hasEnded() const { return ended_; }
  // Scheduler: waits for the thread of a task that has ended.
  void join() { thread_.join(); }
  // Scheduler: never resumes it.
  void abandon();

  // The task itself: what it is going to stop for. It becomes ready at that time, or when the condition is true.
  void sleepUntil(double time) { wakesAt_ = time; }
  void waitUntil(std::function<bool()> condition, double deadline);
  // The task itself: stops until it is resumed. Somebody else must have been told to run before.
  void stop() { go_.acquire(); }

 private:
  void run();

  // Only one thread at a time uses these; the semaphores pass them on.
  Task task_;
  std::binary_semaphore& schedulersTurn_;
  double wakesAt_ = 0;
  std::function<bool()> condition_;
  bool ended_ = false;
  std::thread thread_;
  std::binary_semaphore go_{0};
};

}  // namespace zel::platform

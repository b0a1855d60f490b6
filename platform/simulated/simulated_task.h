#pragma once

#include <functional>
#include <limits>
#include <memory>
#include <semaphore>
#include <thread>

#include <ZELTarkaSDK/platform/task.h>

namespace zel::platform {

inline constexpr double kNever = std::numeric_limits<double>::infinity();  // seconds

// A task of the simulated global queue. It has a thread of its own, so that it may stop anywhere to sleep or to wait;
// but that thread runs only while the scheduler waits for it, and so one at a time does.
// Owner:  the thread keeps the object alive. A task that has begun and is abandoned stays where it is for good.
// Thread: as each operation says.
class SimulatedTask final : public std::enable_shared_from_this<SimulatedTask> {
 public:
  explicit SimulatedTask(Task task) : task_(std::move(task)) {}
  SimulatedTask(const SimulatedTask&) = delete;
  SimulatedTask& operator=(const SimulatedTask&) = delete;

  // Scheduler: whether it can go on now. What it waits for is taken then.
  bool isReady(double now);
  // Scheduler: when it wants to go on at the latest; kNever while it waits for something without a deadline.
  double wakesAt() const { return wakesAt_; }
  // Scheduler: lets it run until it sleeps, waits or ends.
  void resume();
  bool hasEnded() const { return ended_; }
  // Scheduler: leaves it to itself.
  void abandon();

  // The task itself: lets the scheduler go on until that time, or until the condition holds or the deadline has come.
  void sleepUntil(double time);
  void waitUntil(std::function<bool()> condition, double deadline);

 private:
  void run();
  void yield();

  // Only one side at a time touches these; the semaphores hand them over.
  Task task_;
  double wakesAt_ = 0;
  std::function<bool()> condition_;
  bool ended_ = false;
  std::thread thread_;
  std::binary_semaphore go_{0};
  std::binary_semaphore stopped_{0};
};

}  // namespace zel::platform

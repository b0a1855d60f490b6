#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/queues.h>
#include <ZELTarkaSDK/platform/run_loop.h>
#include "platform/simulated/simulated_task.h"

namespace zel::platform {

class SimulatedRunLoop;

// Runs every run loop and queue of the simulated platform one at a time, in virtual time. Each loop keeps its own
// order; which loop or task goes next is drawn by the seed.
// Thread: one, but for what tasks of the global queue call.
class SimulatedScheduler {
 public:
  explicit SimulatedScheduler(std::uint64_t seed) : random_(seed) {}
  ~SimulatedScheduler() { abandonTasks(); }
  SimulatedScheduler(const SimulatedScheduler&) = delete;
  SimulatedScheduler& operator=(const SimulatedScheduler&) = delete;

  double now() const { return now_; }
  void setNow(double seconds);

  // Runs everything that is due now.
  // Errors: throws std::runtime_error after a million steps, which only work that begets itself makes.
  void runUntilIdle();

  // Lets threads that have been stopped, or have not begun, take the steps that are left to them. All other work stays.
  void endStoppedThreads();

  // Moves the time on, running everything on the way when it is due.
  void advance(double seconds);

  // Adds a task of the global queue, in no order with the others.
  void addTask(Task task) { tasks_.push_back(std::make_shared<SimulatedTask>(std::move(task))); }
  // Tasks of the global queue that have not ended.
  std::size_t taskCount() const { return tasks_.size(); }
  // Drops tasks that have not begun, and leaves the others where they are for good.
  void abandonTasks();

  // Lets the caller sleep. A task of the global queue lets the others go on meanwhile; for anybody else the time is
  // over at once.
  void sleepFor(double seconds);

  // Lets the caller wait. Outside a task of the global queue only such tasks go on meanwhile, as the caller's loop is
  // at a call, and the time with them. False where the deadline came first.
  // Errors: throws std::runtime_error where nobody is left who could bring the condition about.
  bool waitUntil(const std::function<bool()>& condition, double deadline = kNever);

  // The loop whose call is in progress, or null; the innermost when the end of one thread runs inside another.
  SimulatedRunLoop* current() const { return running_.empty() ? nullptr : running_.back(); }
  bool isRunning(const SimulatedRunLoop& loop) const;

 private:
  friend class SimulatedRunLoop;

  void add(SimulatedRunLoop& loop) { loops_.push_back(&loop); }
  void remove(SimulatedRunLoop& loop);
  bool runOne();
  void step(SimulatedRunLoop& loop);
  void resume(const std::shared_ptr<SimulatedTask>& task);
  std::vector<std::shared_ptr<SimulatedTask>> readyTasks() const;
  double nextWakening() const;

  double now_ = 0;
  std::mt19937_64 random_;
  std::vector<SimulatedRunLoop*> loops_;
  std::vector<std::shared_ptr<SimulatedTask>> tasks_;
  std::vector<SimulatedRunLoop*> running_;  // null where a task of the global queue runs
  SimulatedTask* runningTask_ = nullptr;
};

// A run loop that is also a queue. Ready work is its tasks in order, then signalled sources and timers that are due.
// Like a real one it falls asleep when it finds no work, and then sees a signalled source only after something woke it.
class SimulatedRunLoop final : public RunLoop, public Queue {
 public:
  explicit SimulatedRunLoop(SimulatedScheduler& scheduler) : scheduler_(scheduler) { scheduler_.add(*this); }
  ~SimulatedRunLoop() override { scheduler_.remove(*this); }

  void post(Task task) override { perform(std::move(task)); }
  void perform(Task task) override;
  std::unique_ptr<Timer> scheduleRepeating(double seconds, Task task) override;
  std::unique_ptr<RunLoopSource> addSource(Task task) override;
  bool isWaiting() const override;
  void wakeUp() override;
  void stop() override;

  // The first step of a thread, which it takes even when it is stopped before.
  void beginWith(std::function<void(RunLoop&)> begin) { begin_ = std::move(begin); }
  // Called, as a step of its own, once the loop has been stopped.
  void whenStopped(std::function<void()> end) { end_ = std::move(end); }
  // Stops the loop and takes the steps that are left at once, unless its call is in progress.
  void finish();

 private:
  friend class SimulatedScheduler;
  class SimulatedTimer;
  class SimulatedSource;

  bool isReady() const;
  bool isBeginningOrEnding() const { return begin_ != nullptr || (stopped_ && end_ != nullptr); }
  bool hasWork() const;
  void step();
  void turn();
  double nextTimer() const;
  SimulatedTimer* dueTimer() const;

  SimulatedScheduler& scheduler_;
  std::deque<Task> tasks_;
  std::vector<SimulatedTimer*> timers_;
  std::vector<SimulatedSource*> sources_;
  std::function<void(RunLoop&)> begin_;
  std::function<void()> end_;
  bool awake_ = false;
  bool stopped_ = false;
};

}  // namespace zel::platform

#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <random>
#include <semaphore>
#include <vector>

#include <ZELTarkaSDK/platform/queues.h>
#include <ZELTarkaSDK/platform/run_loop.h>

#include "platform/simulated/simulated_task.h"

namespace zel::platform {

class SimulatedRunLoop;

// Runs the run loops and queues of the simulated platform one at a time, in virtual time. Each loop keeps its own
// order; the seed determines which loop or task runs next.
// Thread: one, except for calls by tasks of the global queue.
class SimulatedScheduler final : public Queue {
 public:
  explicit SimulatedScheduler(std::uint64_t seed) : random_(seed) {}
  ~SimulatedScheduler() override { abandonTasks(); }
  SimulatedScheduler(const SimulatedScheduler&) = delete;
  SimulatedScheduler& operator=(const SimulatedScheduler&) = delete;

  double now() const { return now_; }
  void setNow(double seconds) { now_ = seconds; }

  // Runs everything that is due now.
  // Errors: throws std::runtime_error after a million steps, which indicates work that queues itself endlessly.
  void runUntilIdle();

  // Runs the remaining steps of threads that were stopped or have not begun. All other work stays queued.
  void endStoppedThreads();

  // Advances the time, and runs everything when it is due.
  void advance(double seconds);

  // Adds a task of the global queue, without an order among them.
  void post(Task task) override { tasks_.push_back(std::make_shared<SimulatedTask>(std::move(task), turn_)); }
  // Tasks of the global queue that have not ended.
  std::size_t taskCount() const { return tasks_.size(); }
  // Drops tasks that have not begun, and never resumes the others.
  void abandonTasks();

  // Lets the caller sleep. While a task of the global queue sleeps, others run; for other callers the time passes at
  // once.
  void sleepFor(double seconds);

  // Lets the caller wait. If the caller is not a task of the global queue, only such tasks run meanwhile, and the time
  // advances with them. False when the deadline came first.
  // Errors: throws std::runtime_error when nothing is left that could make the condition true.
  bool waitUntil(const std::function<bool()>& condition, double deadline = kNever);

  // The loop whose call is in progress, or null; the innermost one if calls are nested.
  SimulatedRunLoop* current() const { return running_.empty() ? nullptr : running_.back(); }
  bool isRunning(const SimulatedRunLoop& loop) const;

 private:
  friend class SimulatedRunLoop;

  static constexpr double kNotAtAll = -kNever;

  void add(SimulatedRunLoop& loop) { loops_.push_back(&loop); }
  void remove(SimulatedRunLoop& loop) { std::erase(loops_, &loop); }
  bool runOne();
  void step(SimulatedRunLoop& loop);
  void run(double until);
  void resume(const std::shared_ptr<SimulatedTask>& task);
  void passOn();
  std::shared_ptr<SimulatedTask> taskThatIsNext();
  std::vector<std::shared_ptr<SimulatedTask>> readyTasks() const;
  double nextWakening() const;
  double nextEvent() const;

  double now_ = 0;
  std::mt19937_64 random_;
  std::vector<SimulatedRunLoop*> loops_;
  std::vector<std::shared_ptr<SimulatedTask>> tasks_;
  std::vector<SimulatedRunLoop*> running_;  // null for a task of the global queue
  SimulatedTask* runningTask_ = nullptr;
  std::binary_semaphore turn_{0};  // released when the running task lets the scheduler's own thread continue
  double until_ = kNotAtAll;       // how far a task that stops may advance the time
  int steps_ = 0;                  // since the time has advanced
};

// A run loop that is also a queue. Ready work is its tasks in order, then signalled sources and timers that are due.
// Like a real one it sleeps when it has no work, and then notices a signalled source only after a wake-up.
class SimulatedRunLoop final : public RunLoop, public Queue {
 public:
  explicit SimulatedRunLoop(SimulatedScheduler& scheduler) : scheduler_(scheduler) { scheduler_.add(*this); }
  ~SimulatedRunLoop() override { scheduler_.remove(*this); }

  void post(Task task) override { perform(std::move(task)); }
  void perform(Task task) override;
  std::unique_ptr<Timer> scheduleRepeating(double seconds, Task task) override;
  std::unique_ptr<RunLoopSource> addSource(Task task) override;
  bool isWaiting() const override;
  void wakeUp() override { awake_ = true; }
  void stop() override;

  // Sets the first step of a thread, which runs even if the thread was stopped before.
  void beginWith(std::function<void(RunLoop&)> begin) { begin_ = std::move(begin); }
  // Sets the last step, which runs after the loop was stopped.
  void whenStopped(std::function<void()> end) { end_ = std::move(end); }
  // Stops the loop and runs the remaining steps at once, unless its call is in progress.
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

#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "platform/queues.h"
#include "platform/run_loop.h"

namespace zel::platform {

class SimulatedRunLoop;

// Runs every run loop and queue of the simulated platform on one thread, in virtual time. Each loop keeps its own
// order; which loop goes next is drawn by the seed. Thread: one.
class SimulatedScheduler {
 public:
  explicit SimulatedScheduler(std::uint64_t seed) : random_(seed) {}

  double now() const { return now_; }
  void setNow(double seconds);

  // Runs everything that is due now. Ends the process with a message after ten million steps: work that begets itself.
  void runUntilIdle();

  // Moves the time on, running everything on the way when it is due.
  void advance(double seconds);

  SimulatedRunLoop* current() const { return current_; }

 private:
  friend class SimulatedRunLoop;

  void add(SimulatedRunLoop& loop) { loops_.push_back(&loop); }
  void remove(SimulatedRunLoop& loop);
  bool runOne();
  double nextTimer() const;

  double now_ = 0;
  std::mt19937_64 random_;
  std::vector<SimulatedRunLoop*> loops_;
  SimulatedRunLoop* current_ = nullptr;
};

// A run loop that is also a queue. Ready work is its tasks in order, then signalled sources and timers that are due.
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

  bool isStopped() const { return stopped_; }
  // Called, as a step of its own, once the loop has been stopped.
  void whenStopped(std::function<void()> end) { end_ = std::move(end); }
  // Runs the missing end at once.
  void finish();

 private:
  friend class SimulatedScheduler;
  class SimulatedTimer;
  class SimulatedSource;

  bool isReady() const;
  void step();
  double nextTimer() const;
  SimulatedTimer* dueTimer() const;

  SimulatedScheduler& scheduler_;
  std::deque<Task> tasks_;
  std::vector<SimulatedTimer*> timers_;
  std::vector<SimulatedSource*> sources_;
  std::function<void()> end_;
  bool stopped_ = false;
};

}  // namespace zel::platform

#include "platform/simulated/simulated_scheduler.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace zel::platform {
namespace {

constexpr int kStepsBeforeLivelock = 1'000'000;

// Sets a value for a scope.
class Within {
 public:
  Within(double& value, double meanwhile) : value_(value), before_(std::exchange(value, meanwhile)) {}
  ~Within() { value_ = before_; }
  Within(const Within&) = delete;
  Within& operator=(const Within&) = delete;

 private:
  double& value_;
  const double before_;
};

}  // namespace

// A call in progress keeps its task alive, so that it may destroy its timer.
class SimulatedRunLoop::SimulatedTimer final : public Timer {
 public:
  SimulatedTimer(SimulatedRunLoop& loop, double period, Task task)
      : loop_(loop),
        period_(period),
        due_(loop.scheduler_.now() + period),
        task_(std::make_shared<Task>(std::move(task))) {
    loop_.timers_.push_back(this);
  }
  ~SimulatedTimer() override { std::erase(loop_.timers_, this); }

  double due() const { return due_; }

  void fire() {
    due_ = std::max(due_ + period_, loop_.scheduler_.now());
    const auto task = task_;
    (*task)();
  }

 private:
  SimulatedRunLoop& loop_;
  double period_;
  double due_;
  std::shared_ptr<Task> task_;
};

class SimulatedRunLoop::SimulatedSource final : public RunLoopSource {
 public:
  SimulatedSource(SimulatedRunLoop& loop, Task task) : loop_(loop), task_(std::make_shared<Task>(std::move(task))) {
    loop_.sources_.push_back(this);
  }
  ~SimulatedSource() override { std::erase(loop_.sources_, this); }

  void signal() override { signalled = true; }

  void fire() {
    signalled = false;
    const auto task = task_;
    (*task)();
  }

  bool signalled = false;

 private:
  SimulatedRunLoop& loop_;
  std::shared_ptr<Task> task_;
};

void SimulatedRunLoop::perform(Task task) {
  if (stopped_) return;
  tasks_.push_back(std::move(task));
  awake_ = true;
}

std::unique_ptr<Timer> SimulatedRunLoop::scheduleRepeating(double seconds, Task task) {
  return std::make_unique<SimulatedTimer>(*this, seconds, std::move(task));
}

std::unique_ptr<RunLoopSource> SimulatedRunLoop::addSource(Task task) {
  return std::make_unique<SimulatedSource>(*this, std::move(task));
}

bool SimulatedRunLoop::isWaiting() const {
  return !stopped_ && !begin_ && !awake_ && dueTimer() == nullptr && !scheduler_.isRunning(*this);
}

void SimulatedRunLoop::stop() {
  stopped_ = true;
  std::exchange(tasks_, {});
}

void SimulatedRunLoop::finish() {
  stop();
  while (!scheduler_.isRunning(*this) && isReady()) scheduler_.step(*this);
}

bool SimulatedRunLoop::isReady() const {
  if (begin_) return true;
  if (stopped_) return end_ != nullptr;
  return awake_ || dueTimer() != nullptr;
}

bool SimulatedRunLoop::hasWork() const {
  return !tasks_.empty() || std::ranges::any_of(sources_, &SimulatedSource::signalled);
}

SimulatedRunLoop::SimulatedTimer* SimulatedRunLoop::dueTimer() const {
  const auto found =
      std::ranges::find_if(timers_, [this](const SimulatedTimer* timer) { return timer->due() <= scheduler_.now(); });
  return found != timers_.end() ? *found : nullptr;
}

double SimulatedRunLoop::nextTimer() const {
  double next = kNever;
  if (stopped_) return next;
  for (const SimulatedTimer* timer : timers_) next = std::min(next, timer->due());
  return next;
}

void SimulatedRunLoop::step() {
  if (const auto begin = std::exchange(begin_, nullptr)) {
    begin(*this);
  } else if (!stopped_) {
    turn();
  } else if (const auto end = std::exchange(end_, nullptr)) {
    // The last call; it may destroy the loop.
    return end();
  }
  awake_ = hasWork();
}

void SimulatedRunLoop::turn() {
  if (!tasks_.empty()) {
    const Task task = std::move(tasks_.front());
    tasks_.pop_front();
    return task();
  }
  const auto source = std::ranges::find_if(sources_, &SimulatedSource::signalled);
  if (source != sources_.end()) return (*source)->fire();
  if (SimulatedTimer* timer = dueTimer()) timer->fire();
}

bool SimulatedScheduler::isRunning(const SimulatedRunLoop& loop) const {
  return std::ranges::find(running_, &loop) != running_.end();
}

void SimulatedScheduler::step(SimulatedRunLoop& loop) {
  running_.push_back(&loop);
  loop.step();
  running_.pop_back();
}

std::vector<std::shared_ptr<SimulatedTask>> SimulatedScheduler::readyTasks() const {
  std::vector<std::shared_ptr<SimulatedTask>> ready;
  std::ranges::copy_if(tasks_, std::back_inserter(ready), [this](const auto& task) { return task->isReady(now_); });
  return ready;
}

bool SimulatedScheduler::runOne() {
  std::vector<SimulatedRunLoop*> loops;
  std::ranges::copy_if(loops_, std::back_inserter(loops), &SimulatedRunLoop::isReady);
  const auto tasks = readyTasks();
  if (loops.empty() && tasks.empty()) return false;
  const std::size_t drawn = random_() % (loops.size() + tasks.size());
  if (drawn < loops.size()) {
    step(*loops[drawn]);
  } else {
    resume(tasks[drawn - loops.size()]);
  }
  return true;
}

void SimulatedScheduler::resume(const std::shared_ptr<SimulatedTask>& task) {
  running_.push_back(nullptr);
  SimulatedTask* const outer = std::exchange(runningTask_, task.get());
  task->resume();
  turn_.acquire();
  runningTask_ = outer;
  running_.pop_back();
  const auto ended = std::ranges::find_if(tasks_, &SimulatedTask::hasEnded);
  if (ended == tasks_.end()) return;
  (*ended)->join();
  tasks_.erase(ended);
}

// Called by the running task, which stops for what it has told. If another task is next, that one is resumed from here
// rather than by the scheduler's thread: a switch of threads is by far the most expensive step of all.
void SimulatedScheduler::passOn() {
  SimulatedTask* const stopping = runningTask_;
  const auto next = taskThatIsNext();
  if (next.get() == stopping) return;
  if (next) {
    runningTask_ = next.get();
    next->resume();
  } else {
    turn_.release();
  }
  stopping->stop();
}

// The task that the scheduler would resume as its next step, or null if it would do anything else.
std::shared_ptr<SimulatedTask> SimulatedScheduler::taskThatIsNext() {
  for (;;) {
    if (now_ > until_ || steps_ >= kStepsBeforeLivelock) return nullptr;
    if (std::ranges::any_of(loops_, &SimulatedRunLoop::isReady)) return nullptr;
    const auto ready = readyTasks();
    if (!ready.empty()) {
      ++steps_;
      return ready[random_() % ready.size()];
    }
    const double next = nextEvent();
    if (next > until_) return nullptr;
    now_ = std::max(now_, next);
    steps_ = 0;
  }
}

void SimulatedScheduler::abandonTasks() {
  const auto abandoned = std::exchange(tasks_, {});
  for (const auto& task : abandoned) task->abandon();
}

void SimulatedScheduler::sleepFor(double seconds) {
  if (seconds <= 0) return;
  if (runningTask_ == nullptr) return setNow(now_ + seconds);
  runningTask_->sleepUntil(now_ + seconds);
  passOn();
}

bool SimulatedScheduler::waitUntil(const std::function<bool()>& condition, double deadline) {
  bool met = condition();
  if (met) return true;
  if (runningTask_ != nullptr) {
    runningTask_->waitUntil([&] { return met = condition(); }, deadline);
    passOn();
    return met;
  }
  const Within noOtherStep(until_, kNotAtAll);
  while (!condition()) {
    if (now_ >= deadline) return false;
    const auto ready = readyTasks();
    if (!ready.empty()) {
      resume(ready[random_() % ready.size()]);
      continue;
    }
    const double next = std::min(nextWakening(), deadline);
    if (next == kNever) throw std::runtime_error("simulated platform: waits for good");
    now_ = next;
  }
  return true;
}

double SimulatedScheduler::nextWakening() const {
  double next = kNever;
  for (const auto& task : tasks_) next = std::min(next, task->wakesAt());
  return next;
}

double SimulatedScheduler::nextEvent() const {
  double next = nextWakening();
  for (const SimulatedRunLoop* loop : loops_) next = std::min(next, loop->nextTimer());
  return next;
}

void SimulatedScheduler::runUntilIdle() { run(now_); }

void SimulatedScheduler::run(double until) {
  const Within limit(until_, until);
  for (steps_ = 0; runOne(); ++steps_) {
    if (steps_ >= kStepsBeforeLivelock) throw std::runtime_error("simulated platform: work without end");
  }
}

void SimulatedScheduler::endStoppedThreads() {
  const auto next = [this] { return std::ranges::find_if(loops_, &SimulatedRunLoop::isBeginningOrEnding); };
  for (auto loop = next(); loop != loops_.end(); loop = next()) step(**loop);
}

void SimulatedScheduler::advance(double seconds) {
  const double until = now_ + seconds;
  run(until);
  for (double next = nextEvent(); next <= until; next = nextEvent()) {
    now_ = std::max(now_, next);
    run(until);
  }
  now_ = until;
  run(until);
}

}  // namespace zel::platform

#include "platform/linux/linux_run_loop.h"

#include <utility>

#include "base/has_memory_for.h"
namespace zel::platform {
namespace {

thread_local LinuxRunLoop* loopOfThisThread = nullptr;

// More than any realistic number of due events.
constexpr int kTurnsOfOneDrain = 1000;

}  // namespace

struct LinuxRunLoop::SignalledTask {
  explicit SignalledTask(Task call) : task(std::move(call)) {}
  GuardedTask task;
  std::atomic<bool> signalled = false;
};

class LinuxRunLoopSource final : public RunLoopSource {
 public:
  LinuxRunLoopSource(std::shared_ptr<LinuxRunLoop> loop, std::shared_ptr<LinuxRunLoop::SignalledTask> source)
      : loop_(std::move(loop)), source_(std::move(source)) {}
  ~LinuxRunLoopSource() override {
    loop_->remove(source_);
    source_->task.close();
  }

  void signal() override {
    source_->signalled.store(true);
    loop_->signalled_.store(true);
  }

 private:
  const std::shared_ptr<LinuxRunLoop> loop_;
  const std::shared_ptr<LinuxRunLoop::SignalledTask> source_;
};

std::shared_ptr<LinuxRunLoop> LinuxRunLoop::create() { return std::shared_ptr<LinuxRunLoop>(new LinuxRunLoop); }

LinuxRunLoop::LinuxRunLoop() : alarm_(io_, [this] { rung(); }), work_(io_.get_executor()) {}

LinuxRunLoop::~LinuxRunLoop() {
  end(Ending::stop);  // destructors of tasks cannot queue anything any more
  discard();
}

LinuxRunLoop* LinuxRunLoop::ofThisThread() { return loopOfThisThread; }

LinuxRunLoop::Scope::Scope(LinuxRunLoop& loop) : outer_(std::exchange(loopOfThisThread, &loop)) {}

LinuxRunLoop::Scope::~Scope() { loopOfThisThread = outer_; }

// The task may release the loop before this call has returned, here and in wakeUp().
void LinuxRunLoop::perform(Task task) {
  const auto self = weak_from_this().lock();
  if (!self) return;  // a task that is destroyed with the loop calls it
  bool isFirst = false;
  {
    const MutexLock lock(mutex_);
    if (isStopped()) return;  // the task is destroyed with the parameter, after the lock
    tasks_.push_back(std::move(task));
    isFirst = !std::exchange(nextIsDue_, true);
  }
  if (executor_) return executor_([self] { self->runNext(); });
  if (isFirst) scheduleNext();
}

// On the loop's own thread no wake-up is needed.
void LinuxRunLoop::scheduleNext() {
  if (ofThisThread() != this || !hasMemoryFor([this] { asio::post(io_, [this] { runNext(); }); })) alarm_.ring();
}

// With an executor the tasks are the host's to run, and the alarm only ends a sleep.
void LinuxRunLoop::rung() {
  if (!executor_) return runNext();
  becomes(Sleep::awake);
}

// One event for each task, so that tasks, timers and streams take turns. The next one is scheduled first, because the
// task may run the loop itself.
void LinuxRunLoop::runNext() {
  becomes(Sleep::awake);
  Task task;
  bool more = false;
  {
    const MutexLock lock(mutex_);
    nextIsDue_ = more = !isStopped() && tasks_.size() > 1;
    if (isStopped() || tasks_.empty()) return;
    task = std::move(tasks_.front());
    tasks_.pop_front();
  }
  if (more && !executor_) scheduleNext();
  task();
  task = nullptr;  // its captures are destroyed before anything else runs
  if (executor_) runSources();
}

void LinuxRunLoop::handOver(std::function<void()> call) {
  executor_([self = shared_from_this(), call = std::move(call)] {
    if (self->isStopped()) return;
    call();
    self->runSources();
  });
}

std::unique_ptr<RunLoopSource> LinuxRunLoop::addSource(Task task) {
  auto source = std::make_shared<SignalledTask>(std::move(task));
  const MutexLock lock(mutex_);
  sources_.push_back(source);
  return std::make_unique<LinuxRunLoopSource>(shared_from_this(), std::move(source));
}

void LinuxRunLoop::remove(const std::shared_ptr<SignalledTask>& source) {
  const MutexLock lock(mutex_);
  std::erase(sources_, source);
}

void LinuxRunLoop::runSources() {
  if (!signalled_.exchange(false)) return;
  std::vector<std::shared_ptr<SignalledTask>> sources;
  {
    const MutexLock lock(mutex_);
    sources = sources_;
  }
  for (const auto& source : sources) {
    if (!isStopped() && source->signalled.exchange(false)) source->task.call();
  }
}

// A loop with an executor does not know whether the host sleeps; it returns true, so that wake-ups are not omitted.
bool LinuxRunLoop::isWaiting() const { return executor_ || sleep_.load() != Sleep::awake; }

void LinuxRunLoop::wakeUp() {
  const auto self = weak_from_this().lock();
  if (!self) return;
  if (!beginWaking()) return;
  const auto wake = [this] {
    becomes(Sleep::awake);
    if (executor_) runSources();
  };
  if (executor_) return executor_([self, wake] { wake(); });
  if (hasMemoryFor([&] { asio::post(io_, wake); })) return;
  becomes(Sleep::asleep);
  alarm_.ring();
}

// False where nobody needs to wake it. With an executor nobody knows whether the host sleeps.
bool LinuxRunLoop::beginWaking() {
  Sleep seen = sleep_.load();
  while (seen != Sleep::waking && (executor_ || seen == Sleep::asleep)) {
    if (sleep_.compare_exchange_weak(seen, Sleep::waking)) return true;
  }
  return false;
}

// Also wakes a loop that is about to sleep and has not reported it yet. It takes no memory: what dies while there is
// none still ends its loop.
void LinuxRunLoop::nudge() {
  const auto self = weak_from_this().lock();
  alarm_.ring();
}

void LinuxRunLoop::stop() {
  {
    const MutexLock lock(mutex_);
    end(Ending::stop);
  }
  nudge();
}

void LinuxRunLoop::leave() {
  end(Ending::leave);
  nudge();
}

// A loop that has been stopped stays so.
void LinuxRunLoop::end(Ending how) {
  Ending seen = ending_.load();
  while (seen != Ending::stop && !ending_.compare_exchange_weak(seen, how)) continue;
}

// Whether somebody asked for the run to be left; the next one is not.
bool LinuxRunLoop::takeLeave() {
  Ending leave = Ending::leave;
  return ending_.compare_exchange_strong(leave, Ending::none);
}

// Reports the sleep first and checks the signals afterwards, so that no wake-up is lost: a signalling thread either
// sees the report and wakes the loop, or has signalled before the check.
void LinuxRunLoop::turn() {
  runSources();
  becomes(Sleep::asleep);
  if (!signalled_.load() && ending_.load() == Ending::none) io_.run_one();
  becomes(Sleep::awake);
}

void LinuxRunLoop::run() {
  const Scope scope(*this);
  while (!isStopped() && !takeLeave()) turn();
  if (isStopped()) discard();
}

bool LinuxRunLoop::runFor(std::chrono::steady_clock::duration time) {
  const auto ended = std::make_shared<std::atomic<bool>>(false);
  asio::steady_timer timer(io_, time);
  timer.async_wait([this, ended](const std::error_code& error) {
    becomes(Sleep::awake);
    if (!error) ended->store(true);
  });
  const Scope scope(*this);
  bool left = false;
  while (!ended->load() && !(left = isStopped() || takeLeave())) turn();
  if (isStopped()) discard();
  return left;
}

void LinuxRunLoop::drain() {
  const Scope scope(*this);
  for (int turns = 0; turns < kTurnsOfOneDrain && !isStopped(); ++turns) {
    const bool sourceIsDue = signalled_.load();
    runSources();
    if (io_.poll_one() == 0 && !sourceIsDue) break;
  }
}

void LinuxRunLoop::discard() {
  while (takeTask()) continue;  // each destroyed without the lock, because a task's captures may call the loop
}

std::optional<Task> LinuxRunLoop::takeTask() {
  const MutexLock lock(mutex_);
  if (tasks_.empty()) return std::nullopt;
  std::optional<Task> task(std::move(tasks_.front()));
  tasks_.pop_front();
  return task;
}

}  // namespace zel::platform

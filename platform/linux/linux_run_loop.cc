#include "platform/linux/linux_run_loop.h"

#include <asio/error_code.hpp>
#include <asio/executor_work_guard.hpp>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>

#include <algorithm>
#include <thread>
#include <utility>

#include "platform/call_gate.h"

namespace zel::platform {
namespace {

thread_local LinuxRunLoop* currentLoop = nullptr;

using SteadySeconds = std::chrono::duration<double>;

std::chrono::steady_clock::duration steadyDuration(double seconds) {
  return std::chrono::duration_cast<std::chrono::steady_clock::duration>(SteadySeconds(seconds));
}

}  // namespace

// The thread that serves the main loop where the host runs the calls.
class LinuxRunLoop::ServiceThread {
 public:
  explicit ServiceThread(asio::io_context& context)
      : context_(context), guard_(asio::make_work_guard(context)), thread_([&context] { context.run(); }) {}
  ~ServiceThread() {
    guard_.reset();
    context_.stop();
    thread_.join();
  }
  ServiceThread(const ServiceThread&) = delete;
  ServiceThread& operator=(const ServiceThread&) = delete;

 private:
  asio::io_context& context_;
  asio::executor_work_guard<asio::io_context::executor_type> guard_;
  std::thread thread_;
};

class LinuxRunLoop::CurrentScope {
 public:
  explicit CurrentScope(LinuxRunLoop& loop) : before_(std::exchange(currentLoop, &loop)) {}
  ~CurrentScope() { currentLoop = before_; }
  CurrentScope(const CurrentScope&) = delete;
  CurrentScope& operator=(const CurrentScope&) = delete;

 private:
  LinuxRunLoop* before_;
};

// The state is shared with the wait that is under way, so that the handle may go at any moment, on any thread.
class LinuxRunLoop::LoopTimer final : public Timer {
 public:
  LoopTimer(std::shared_ptr<LinuxRunLoop> loop, double seconds, Task task)
      : state_(std::make_shared<State>(std::move(loop), seconds, std::move(task))) {
    state_->loop->perform([state = state_] { state->arm(); });
  }
  ~LoopTimer() override {
    state_->gate.close();
    state_->loop->perform([state = state_] { state->timer.cancel(); });
  }

 private:
  struct State : std::enable_shared_from_this<State> {
    State(std::shared_ptr<LinuxRunLoop> runLoop, double seconds, Task call)
        : loop(std::move(runLoop)),
          period(steadyDuration(seconds)),
          due(std::chrono::steady_clock::now() + period),
          task(std::move(call)),
          timer(loop->context()) {}

    void arm() {
      timer.expires_at(due);
      timer.async_wait([self = shared_from_this()](const asio::error_code& error) {
        if (!error) self->loop->invoke([self] { self->fire(); });
      });
    }
    void fire() {
      bool stopped = true;
      gate.enter([&] {
        task();
        stopped = false;
      });
      if (stopped) return;
      due = std::max(due + period, std::chrono::steady_clock::now());
      arm();
    }

    const std::shared_ptr<LinuxRunLoop> loop;
    const std::chrono::steady_clock::duration period;
    std::chrono::steady_clock::time_point due;
    const Task task;
    CallGate gate;
    asio::steady_timer timer;
  };

  std::shared_ptr<State> state_;
};

class LinuxRunLoop::LoopSource final : public RunLoopSource {
 public:
  LoopSource(std::weak_ptr<LinuxRunLoop> loop, Task task)
      : loop_(std::move(loop)), state_(std::make_shared<State>(std::move(task))) {}
  ~LoopSource() override { state_->gate.close(); }

  // Queued once for any number of signals; the queued call wakes the loop by itself.
  void signal() override {
    if (state_->signalled.exchange(true)) return;
    if (const auto loop = loop_.lock()) loop->perform([state = state_] { state->fire(); });
  }

 private:
  struct State {
    explicit State(Task call) : task(std::move(call)) {}
    void fire() {
      signalled.store(false);
      gate.enter(task);
    }
    std::atomic<bool> signalled = false;
    const Task task;
    CallGate gate;
  };

  std::weak_ptr<LinuxRunLoop> loop_;
  std::shared_ptr<State> state_;
};

LinuxRunLoop::~LinuxRunLoop() {
  service_.reset();
  left_.store(true);
  dropQueued();
}

LinuxRunLoop* LinuxRunLoop::current() { return currentLoop; }

void LinuxRunLoop::perform(Task task) {
  if (kind_ == Kind::ofThread && isLeft()) return;
  asio::post(context_, [this, task = std::move(task)]() mutable { invoke(std::move(task)); });
}

void LinuxRunLoop::invoke(Task task) {
  waiting_.store(false);
  if (kind_ == Kind::ofThread && isLeft()) return;
  std::function<void(Task)> executor;
  {
    const MutexLock lock(executorMutex_);
    executor = executor_;
  }
  if (!executor) return call(task);
  executor([weak = weak_from_this(), task = std::move(task)] {
    if (const auto self = weak.lock()) self->call(task);
  });
}

void LinuxRunLoop::call(const Task& task) {
  const CurrentScope scope(*this);
  task();
}

void LinuxRunLoop::wakeUp() {
  asio::post(context_, [] {});
}

void LinuxRunLoop::stop() {
  left_.store(true);
  wakeUp();
}

std::unique_ptr<Timer> LinuxRunLoop::scheduleRepeating(double seconds, Task task) {
  return std::make_unique<LoopTimer>(shared_from_this(), seconds, std::move(task));
}

std::unique_ptr<RunLoopSource> LinuxRunLoop::addSource(Task task) {
  return std::make_unique<LoopSource>(weak_from_this(), std::move(task));
}

void LinuxRunLoop::run() { runUntil(std::chrono::steady_clock::time_point::max()); }

bool LinuxRunLoop::runUntil(std::chrono::steady_clock::time_point deadline) {
  const CurrentScope scope(*this);
  const auto guard = asio::make_work_guard(context_);
  context_.restart();
  const bool forever = deadline == std::chrono::steady_clock::time_point::max();
  while (!isLeft()) {
    if (context_.poll_one() != 0) continue;
    waiting_.store(true);
    const std::size_t ran = forever ? context_.run_one() : context_.run_one_until(deadline);
    waiting_.store(false);
    if (ran == 0 && !forever) return false;
  }
  if (kind_ == Kind::ofMain) {
    left_.store(false);  // it may be run again
  } else {
    dropQueued();
  }
  return true;
}

void LinuxRunLoop::drain() {
  const CurrentScope scope(*this);
  context_.restart();
  context_.poll();
}

// What was queued is let go here, on the thread that leaves, and not when somebody happens to destroy the loop.
void LinuxRunLoop::dropQueued() {
  if (kind_ == Kind::ofMain) return;
  context_.restart();
  while (context_.poll() != 0) {
  }
}

void LinuxRunLoop::setExecutor(std::function<void(Task)> executor) {
  {
    const MutexLock lock(executorMutex_);
    executor_ = std::move(executor);
  }
  if (!service_) service_ = std::make_unique<ServiceThread>(context_);
}

}  // namespace zel::platform

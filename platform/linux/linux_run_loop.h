#pragma once

#include <asio/io_context.hpp>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

#include "platform/mutex.h"
#include "platform/queues.h"
#include "platform/run_loop.h"

namespace zel::platform {

// A run loop over one io_context. The thread that runs it sleeps in the kernel while there is nothing to do.
// A thread's loop stops for good; the main loop may be left and run again.
class LinuxRunLoop final : public RunLoop, public Queue, public std::enable_shared_from_this<LinuxRunLoop> {
 public:
  enum class Kind { ofThread, ofMain };

  explicit LinuxRunLoop(Kind kind) : kind_(kind) {}
  ~LinuxRunLoop() override;

  void post(Task task) override { perform(std::move(task)); }
  void perform(Task task) override;
  std::unique_ptr<Timer> scheduleRepeating(double seconds, Task task) override;
  std::unique_ptr<RunLoopSource> addSource(Task task) override;
  bool isWaiting() const override { return waiting_.load(); }
  void wakeUp() override;
  void stop() override;

  // Runs until stop(). With a deadline, false when that ended it.
  void run();
  bool runUntil(std::chrono::steady_clock::time_point deadline);
  // Runs what is due and returns.
  void drain();

  // Hands every call to the host's executor from now on, and runs the io_context on a thread of its own.
  void setExecutor(std::function<void(Task)> executor);

  // Runs a call that the io_context has brought: at once, or through the host's executor. Dropped once a thread's loop
  // has stopped.
  void invoke(Task task);
  // Runs the call at once, as one of this loop's.
  void call(const Task& task);

  asio::io_context& context() { return context_; }

  // The loop whose call the current thread is in, or which it runs; null where there is none.
  static LinuxRunLoop* current();
  bool isCurrent() const { return current() == this; }

 private:
  class CurrentScope;
  class LoopTimer;
  class LoopSource;
  class ServiceThread;

  bool isLeft() const { return left_.load(); }
  void dropQueued();

  const Kind kind_;
  asio::io_context context_{1};
  std::atomic<bool> waiting_ = false;
  std::atomic<bool> left_ = false;
  mutable Mutex executorMutex_;
  std::function<void(Task)> executor_ ZEL_GUARDED_BY(executorMutex_);
  std::unique_ptr<ServiceThread> service_;  // runs the io_context where a host's executor runs the calls
};

}  // namespace zel::platform

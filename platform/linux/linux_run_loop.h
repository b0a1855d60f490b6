#pragma once

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/platform/queues.h>
#include <ZELTarkaSDK/platform/run_loop.h>

#include "base/mutex.h"
#include "platform/linux/asio.h"
#include "platform/linux/guarded_task.h"
#include "platform/linux/loop_alarm.h"

namespace zel::platform {

// A run loop over one io_context. It sleeps in epoll while there is nothing to do.
// Owner:  always held by shared pointers: timers, sources and streams keep the loop alive that they were put on.
class LinuxRunLoop final : public RunLoop, public Queue, public std::enable_shared_from_this<LinuxRunLoop> {
 public:
  using Executor = std::function<void(std::function<void()>)>;

  static std::shared_ptr<LinuxRunLoop> create();
  ~LinuxRunLoop() override;

  void post(Task task) override { perform(std::move(task)); }
  void perform(Task task) override;
  std::unique_ptr<Timer> scheduleRepeating(double seconds, Task task) override;
  std::unique_ptr<RunLoopSource> addSource(Task task) override;
  bool isWaiting() const override;
  void wakeUp() override;
  void stop() override;

  // Whether the loop has been told to end for ever.
  bool isStopped() const { return ending_.load() == Ending::stop; }

  // Runs on the calling thread until stop() or leave(). An earlier leave() ends it at once.
  void run();
  // Ends the current or the next run(); queued work stays for the run after it.
  void leave();
  // The same as run(), for at most that long. False when the time was over.
  bool runFor(std::chrono::steady_clock::duration time);
  // Runs due work without waiting. A task that queues itself again cannot keep the caller forever.
  void drain();

  // Passes every call of the loop to the executor, which runs them in order; run() then only watches timers and
  // descriptors. Set it before the loop is used.
  void setExecutor(Executor executor) { executor_ = std::move(executor); }

  // Destroys queued work.
  void discard();

  // For objects that wait on descriptors and timers of this loop: wraps an Asio handler so that it runs as a call of
  // this loop. Use such objects only inside calls of the loop.
  asio::io_context& context() { return io_; }
  template <class Call>
  auto handler(Call call) {
    return [this, call = std::move(call)](const auto& error) mutable {
      becomes(Sleep::awake);
      if (executor_) return handOver([call = std::move(call), error]() mutable { call(error); });
      if (!isStopped()) call(error);
    };
  }

  // The loop that the calling thread runs, or null.
  static LinuxRunLoop* ofThisThread();

  // Sets the calling thread's loop for a scope.
  class Scope {
   public:
    explicit Scope(LinuxRunLoop& loop);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    LinuxRunLoop* const outer_;
  };

 private:
  friend class LinuxRunLoopSource;
  struct SignalledTask;

  // What ends run().
  enum class Ending {
    none,   // nothing: it goes on
    leave,  // the run in progress ends, or the next one; the queue is kept for the run after it
    stop,   // the loop has ended for ever
  };
  // Whether the loop's thread waits for events.
  enum class Sleep {
    awake,   // calls are made
    asleep,  // it waits, or is about to
    waking,  // it has been woken, and has not noticed yet
  };

  LinuxRunLoop();
  void handOver(std::function<void()> call);
  void turn();
  void scheduleNext();
  void rung();
  void runNext();
  void runSources();
  void remove(const std::shared_ptr<SignalledTask>& source);
  void nudge();
  // The only writers of the two states.
  void end(Ending how);
  bool takeLeave();
  void becomes(Sleep sleep) { sleep_.store(sleep); }
  bool beginWaking();
  std::optional<Task> takeTask() ZEL_EXCLUDES(mutex_);

  asio::io_context io_;
  LoopAlarm alarm_;
  asio::executor_work_guard<asio::io_context::executor_type> work_;
  Executor executor_;  // constant once the loop is in use

  std::atomic<Sleep> sleep_ = Sleep::awake;
  std::atomic<Ending> ending_ = Ending::none;
  std::atomic<bool> signalled_ = false;  // a source has been, since the loop looked

  Mutex mutex_;
  std::deque<Task> tasks_ ZEL_GUARDED_BY(mutex_);
  bool nextIsDue_ ZEL_GUARDED_BY(mutex_) = false;  // an event that runs the first of them is queued
  std::vector<std::shared_ptr<SignalledTask>> sources_ ZEL_GUARDED_BY(mutex_);
};

// Whole clock ticks for that many seconds, at least 0.1 milliseconds and at most about 30 years.
std::chrono::steady_clock::duration steadyDuration(double seconds);

}  // namespace zel::platform

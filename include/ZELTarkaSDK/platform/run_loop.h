#pragma once

#include <functional>
#include <memory>
#include <string>

#include <ZELTarkaSDK/platform/task.h>

namespace zel::platform {

// A running timer. Destroying it stops it: afterwards its task neither runs nor is running. Destroyed inside any
// callback, including the task itself, it does not wait: a call in progress on another thread is then the last.
//
// Thread: destroy on any thread, but outside a callback not while holding a lock that the task takes.
class Timer {
 public:
  virtual ~Timer() = default;
};

// An event source of a run loop. Signals coalesce: any number of them before the loop's next turn give one call.
// Destroying it removes it from its run loop, with the same promise as Timer.
class RunLoopSource {
 public:
  virtual ~RunLoopSource() = default;

  // Signals the source. The run loop calls its task on its next turn; a sleeping run loop also needs wakeUp().
  // Thread: any thread.
  virtual void signal() = 0;
};

// The event loop of one thread: tasks, timers, sources and the streams scheduled on it, one call at a time.
// Thread: every operation may be called from any thread.
class RunLoop {
 public:
  virtual ~RunLoop() = default;

  // Runs the task later on the loop's thread, in the order of the calls. A loop that has stopped drops it.
  virtual void perform(Task task) = 0;

  // Calls the task every `seconds` seconds (above 0), the first time after one period. Missed periods are skipped.
  virtual std::unique_ptr<Timer> scheduleRepeating(double seconds, Task task) = 0;

  // Adds a source; `task` is called on the loop's thread after each signal.
  virtual std::unique_ptr<RunLoopSource> addSource(Task task) = 0;

  // Whether the loop's thread sleeps because it has no work.
  virtual bool isWaiting() const = 0;

  // Wakes a sleeping loop, so that it runs signalled sources. No effect on a loop that is awake.
  virtual void wakeUp() = 0;

  // Ends the loop after the call in progress; queued work is dropped.
  virtual void stop() = 0;
};

// A thread runs `begin`, then its run loop until it is stopped, then `end`. Both functions may be empty.
struct ThreadBody {
  std::function<void(RunLoop&)> begin;
  std::function<void()> end;
};

// A named thread with a run loop.
// Owner:  destroying the handle stops the loop and waits for the thread's end; destroyed on its own thread, it does not
//         wait.
class Thread {
 public:
  virtual ~Thread() = default;

  // The thread's run loop; lives as long as the handle.
  virtual RunLoop& runLoop() = 0;

  // Whether the caller runs on this thread.
  virtual bool isCurrent() const = 0;
};

// Creates threads and returns the caller's run loop.
// Thread: any thread.
class Threads {
 public:
  virtual ~Threads() = default;

  // Starts a thread. `name` is shown by debuggers.
  // Errors: null when the host has no thread, file descriptor or memory left; the body is then not run.
  virtual std::unique_ptr<Thread> start(std::string name, ThreadBody body) = 0;

  // The calling thread's run loop. A thread without one gets the main run loop.
  virtual RunLoop& currentRunLoop() = 0;
};

}  // namespace zel::platform

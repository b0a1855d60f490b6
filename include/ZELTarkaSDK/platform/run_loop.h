#pragma once

#include <functional>
#include <memory>
#include <string>

#include <ZELTarkaSDK/platform/task.h>

namespace zel::platform {

// A running timer. Destroying it stops it: afterwards its task neither runs nor is running. Destroyed from inside a
// callback, the task itself among them, it does not wait: a call in progress on another thread is then the last.
//
// Thread: destroy on any thread, but outside a callback not while holding a lock that the task takes.
class Timer {
 public:
  virtual ~Timer() = default;
};

// A source of work that is signalled instead of queued: any number of signals before the run loop looks give one call.
// Destroying it removes it from its run loop, with the same promise as Timer.
class RunLoopSource {
 public:
  virtual ~RunLoopSource() = default;

  // Marks the source. The run loop calls it on its next turn; a run loop that sleeps needs wakeUp() besides.
  // Thread: any thread.
  virtual void signal() = 0;
};

// The event loop of one thread: tasks, timers, sources and the streams scheduled on it, one call at a time.
// Thread: every operation may be called from any thread.
class RunLoop {
 public:
  virtual ~RunLoop() = default;

  // Runs the task on the loop's thread, later, in the order of the calls. Dropped, without running, once the loop has
  // stopped.
  virtual void perform(Task task) = 0;

  // Calls the task every `seconds` seconds (above 0), the first time after one period. Missed periods are not made up
  // for.
  virtual std::unique_ptr<Timer> scheduleRepeating(double seconds, Task task) = 0;

  // Adds a source; `task` is called on the loop's thread after each signal.
  virtual std::unique_ptr<RunLoopSource> addSource(Task task) = 0;

  // Whether the loop's thread sleeps for want of work.
  virtual bool isWaiting() const = 0;

  // Ends the sleep, so that signalled sources are looked at. Without effect on a loop that is not asleep.
  virtual void wakeUp() = 0;

  // Ends the loop after the call in progress; work still queued is dropped.
  virtual void stop() = 0;
};

// What a thread does: `begin`, then its run loop until somebody stops it, then `end`. Either may be empty.
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

// Makes threads and tells which run loop the caller is on.
// Thread: any thread.
class Threads {
 public:
  virtual ~Threads() = default;

  // Starts a thread. `name` is what debuggers show.
  // Errors: null where the host has no thread, descriptor or memory left; nothing of the body runs then.
  virtual std::unique_ptr<Thread> start(std::string name, ThreadBody body) = 0;

  // The run loop that the caller runs on. A thread that has none of its own is given the main run loop.
  virtual RunLoop& currentRunLoop() = 0;
};

}  // namespace zel::platform

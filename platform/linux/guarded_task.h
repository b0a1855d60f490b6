#pragma once

#include <utility>

#include "platform/call_gate.h"
#include "platform/task.h"

namespace zel::platform {

// A task that runs any number of times until it is closed. After close() it neither runs nor is running, unless
// close() is called from inside it, and what it holds is released as soon as that call is over.
// Thread: any thread; not while holding a lock that the task takes.
class GuardedTask {
 public:
  explicit GuardedTask(Task task) : task_(std::move(task)) {}

  // Returns whether the task may be called again.
  bool call() {
    Task doomed;  // released outside the gate
    bool again = false;
    gate_.enter([&] {
      running_ = true;
      if (task_) task_();
      running_ = false;
      again = !closed_;
      if (closed_) doomed = std::exchange(task_, nullptr);
    });
    return again;
  }

  void close() {
    gate_.close();
    // From here on no other thread is, or will ever be, inside the gate: if the task still runs, it is the caller.
    closed_ = true;
    if (!running_) task_ = nullptr;
  }

 private:
  CallGate gate_;  // orders every access to the members below
  Task task_;
  bool running_ = false;
  bool closed_ = false;
};

}  // namespace zel::platform

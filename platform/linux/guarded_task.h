#pragma once

#include <memory>
#include <utility>

#include <ZELTarkaSDK/platform/call_gate.h>
#include <ZELTarkaSDK/platform/task.h>

#include "base/mutex.h"

namespace zel::platform {

// A task that runs any number of times until it is closed. After close() it neither runs nor is running, unless close()
// is called inside any callback, including the task itself. Its captures are released as soon as a call in progress has
// returned.
//
// Thread: any thread; outside a callback not while holding a lock that the task takes.
class GuardedTask {
 public:
  explicit GuardedTask(Task task) : task_(std::make_shared<const Task>(std::move(task))) {}

  // Returns whether the task may be called again.
  bool call() {
    if (const auto task = current()) {
      gate_.enter([&] {
        if (*task) (*task)();
      });
    }
    return current() != nullptr;
  }

  void close() {
    gate_.close();
    std::shared_ptr<const Task> doomed;  // released without the lock
    const MutexLock lock(mutex_);
    doomed.swap(task_);
  }

 private:
  std::shared_ptr<const Task> current() {
    const MutexLock lock(mutex_);
    return task_;
  }

  CallGate gate_;
  Mutex mutex_;
  std::shared_ptr<const Task> task_ ZEL_GUARDED_BY(mutex_);  // null once it is closed
};

}  // namespace zel::platform

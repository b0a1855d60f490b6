#pragma once

#include <memory>
#include <utility>

#include <ZELTarkaSDK/platform/call_gate.h>
#include <ZELTarkaSDK/platform/task.h>

#include "base/shared_value.h"

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
    if (const auto task = task_.get()) {
      gate_.enter([&] {
        if (*task) (*task)();
      });
    }
    return task_.get() != nullptr;
  }

  void close() {
    gate_.close();
    task_.set(nullptr);
  }

 private:
  CallGate gate_;
  Guarded<std::shared_ptr<const Task>> task_;  // null once it is closed
};

}  // namespace zel::platform

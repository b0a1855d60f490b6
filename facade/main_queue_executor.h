#pragma once

#include <ZELTarkaSDK/Pending.h>
#include <ZELTarkaSDK/platform/call_gate.h>
#include <ZELTarkaSDK/platform/queues.h>

#include <functional>
#include <utility>

#include "base/mutex.h"
#include "facade/callback_thread.h"

namespace zel {

// Runs what it is given on a camera's main queue, and at once when that is gone.
//
// Thread: any thread.
class MainQueueExecutor {
 public:
  explicit MainQueueExecutor(platform::Queue& queue) : queue_(&queue) {}

  void post(std::function<void()> call) {
    {
      const MutexLock lock(mutex_);
      if (queue_ != nullptr) return queue_->post([call = std::move(call)] { run(call); });
    }
    run(call);
  }
  // The queue goes.
  void close() {
    const MutexLock lock(mutex_);
    queue_ = nullptr;
  }

 private:
  static void run(const std::function<void()>& call) {
    const CallbackThread here;
    const CallbackScope scope;
    call();
  }

  Mutex mutex_;
  platform::Queue* queue_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel

#pragma once

#include <ZELTarkaSDK/Pending.h>
#include <ZELTarkaSDK/platform/queues.h>

#include <atomic>
#include <functional>
#include <thread>
#include <utility>

#include "base/mutex.h"

namespace zel {

// Where a camera's callbacks run: on its main queue, or where the host wants them; and at once when the main queue is
// gone.
//
// Thread: any thread.
class CallbackQueue final : public detail::Callbacks {
 public:
  // host: empty for the main queue.
  CallbackQueue(platform::Queue& mainQueue, Executor host) : host_(std::move(host)), mainQueue_(&mainQueue) {}

  void post(std::function<void()> call) const override;
  // At once on the main queue's own thread, where that is known, but for calls that are made with the stack in use.
  void dispatch(std::function<void()> call) const override;
  void postToMain(std::function<void()> call) const;

  // One thread runs the main queue, and it is this one.
  void noteMainThread() { mainThread_ = std::this_thread::get_id(); }
  // The main queue goes.
  void close();

 private:
  const Executor host_;
  std::atomic<std::thread::id> mainThread_{};
  mutable Mutex mutex_;
  platform::Queue* mainQueue_ ZEL_GUARDED_BY(mutex_);
};

// Marks that this thread uses a camera's stack, whose end waits for that: no callback may run here.
class StackUse {
 public:
  StackUse();
  ~StackUse();
  StackUse(const StackUse&) = delete;
  StackUse& operator=(const StackUse&) = delete;
};

// Whether this thread runs the callbacks of a camera on the queue that all its answers come through: whoever waits for
// an answer here waits for himself.
bool isCallbackThread();

}  // namespace zel

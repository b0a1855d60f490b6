#include "facade/callback_queue.h"

#include <ZELTarkaSDK/platform/call_gate.h>

namespace zel {
namespace {

thread_local int callbackDepth = 0, stackDepth = 0;

void run(const std::function<void()>& call) {
  ++callbackDepth;
  {
    const CallbackScope scope;
    call();
  }
  --callbackDepth;
}

}  // namespace

StackUse::StackUse() { ++stackDepth; }
StackUse::~StackUse() { --stackDepth; }

bool isCallbackThread() { return callbackDepth != 0; }

void CallbackQueue::post(std::function<void()> call) const {
  if (!host_) return postToMain(std::move(call));
  host_([call = std::move(call)] {
    const CallbackScope scope;
    call();
  });
}

void CallbackQueue::dispatch(std::function<void()> call) const {
  const bool isHere = !host_ && stackDepth == 0 && mainThread_.load() == std::this_thread::get_id();
  isHere ? run(call) : post(std::move(call));
}

void CallbackQueue::postToMain(std::function<void()> call) const {
  {
    const MutexLock lock(mutex_);
    if (mainQueue_ != nullptr) return mainQueue_->post([call = std::move(call)] { run(call); });
  }
  run(call);
}

void CallbackQueue::close() {
  const MutexLock lock(mutex_);
  mainQueue_ = nullptr;
}

}  // namespace zel

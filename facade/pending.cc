#include <ZELTarkaSDK/Pending.h>
#include <ZELTarkaSDK/platform/call_gate.h>

#include "facade/callback_thread.h"

namespace zel {
namespace {
thread_local int callbackDepth = 0;
}  // namespace

CallbackThread::CallbackThread() { ++callbackDepth; }
CallbackThread::~CallbackThread() { --callbackDepth; }
bool CallbackThread::isThis() { return callbackDepth != 0; }

namespace detail {

PendingBase::PendingBase(Executor executor) : executor_(std::move(executor)) {}
PendingBase::~PendingBase() = default;

void PendingBase::post(std::function<void()> call) const { executor_(std::move(call)); }

bool PendingBase::wait() {
  std::unique_lock lock(mutex_);
  if (!isSet_ && CallbackThread::isThis()) return false;
  set_.wait(lock, [this] { return isSet_; });
  return true;
}

void PendingBase::whenSet(std::function<void()> call) {
  {
    const std::lock_guard lock(mutex_);
    if (!isSet_) {
      continuation_ = std::move(call);
      return;
    }
  }
  call();
}

void PendingBase::setCancel(std::function<void()> cancel) { cancel_ = std::move(cancel); }

void PendingBase::cancel() const {
  if (cancel_) cancel_();
}

void PendingBase::wake(std::unique_lock<std::mutex> lock) {
  isSet_ = true;
  const auto continuation = std::exchange(continuation_, nullptr);
  set_.notify_all();
  lock.unlock();
  if (continuation) continuation();
}

}  // namespace detail
}  // namespace zel

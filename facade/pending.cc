#include <ZELTarkaSDK/Pending.h>

#include "facade/callback_queue.h"

namespace zel {
namespace detail {

PendingBase::PendingBase(std::shared_ptr<const Callbacks> callbacks) : callbacks_(std::move(callbacks)) {}
PendingBase::~PendingBase() = default;

bool PendingBase::wait() {
  std::unique_lock lock(mutex_);
  if (!isSet_ && isCallbackThread()) return false;
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
  callbacks_->post(std::move(call));
}

void PendingBase::setCancel(std::function<void()> cancel) { cancel_ = std::move(cancel); }

void PendingBase::cancel() const {
  if (cancel_) cancel_();
}

void PendingBase::wake(std::unique_lock<std::mutex> lock) {
  isSet_ = true;
  auto continuation = std::exchange(continuation_, nullptr);
  set_.notify_all();
  lock.unlock();
  if (continuation) callbacks_->dispatch(std::move(continuation));
}

}  // namespace detail
}  // namespace zel

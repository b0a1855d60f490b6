#include "platform/call_gate.h"

#include <utility>

namespace zel {
namespace {

thread_local int callbacksOfThisThread = 0;

}  // namespace

CallbackScope::CallbackScope() { ++callbacksOfThisThread; }
CallbackScope::~CallbackScope() { --callbacksOfThisThread; }

bool insideCallback() { return callbacksOfThisThread != 0; }

void CallGate::makeHandedOver() {
  for (std::function<void()> next; takeHandedOver(next);) next();
}

bool CallGate::isBusyElsewhere() const { return calls_ != 0 && caller_ != std::this_thread::get_id(); }

// Whether the calling thread makes the call.
bool CallGate::begin(std::function<void()>& kept) {
  const MutexLock lock(mutex_);
  if (!closed_ && isBusyElsewhere() && insideCallback()) {
    handedOver_.push_back(std::move(kept));
    return false;
  }
  while (!closed_ && isBusyElsewhere()) changed_.wait(mutex_);
  if (closed_) return false;
  ++calls_;
  caller_ = std::this_thread::get_id();
  return true;
}

// The outermost call makes what has been handed over meanwhile.
bool CallGate::takeHandedOver(std::function<void()>& call) {
  std::function<void()> made = std::exchange(call, nullptr);  // what it holds goes without the lock
  const MutexLock lock(mutex_);
  if (calls_ != 1 || handedOver_.empty()) return false;
  call = std::move(handedOver_.front());
  handedOver_.pop_front();
  return true;
}

void CallGate::end() {
  const MutexLock lock(mutex_);
  if (--calls_ == 0) changed_.notify_all();
}

void CallGate::close() {
  {
    const MutexLock lock(mutex_);
    closed_ = true;
    changed_.notify_all();
    while (isBusyElsewhere() && !insideCallback()) changed_.wait(mutex_);
  }
  for (std::function<void()> doomed; takeFirst(doomed);) continue;  // each goes without the lock
}

bool CallGate::takeFirst(std::function<void()>& call) {
  const std::function<void()> former = std::exchange(call, nullptr);
  const MutexLock lock(mutex_);
  if (handedOver_.empty()) return false;
  call = std::move(handedOver_.front());
  handedOver_.pop_front();
  return true;
}

}  // namespace zel

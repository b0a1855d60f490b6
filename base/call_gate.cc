#include <ZELTarkaSDK/platform/call_gate.h>

#include <condition_variable>
#include <deque>
#include <thread>
#include <utility>

#include "base/mutex.h"

namespace zel {
namespace {

thread_local int callbacksOfThisThread = 0;

}  // namespace

CallbackScope::CallbackScope() { ++callbacksOfThisThread; }
CallbackScope::~CallbackScope() { --callbacksOfThisThread; }

bool insideCallback() { return callbacksOfThisThread != 0; }

class CallGate::State {
 public:
  // Whether the calling thread runs the call.
  bool begin(std::function<void()>& kept) ZEL_EXCLUDES(mutex_) {
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

  // The outermost call runs the calls that were handed over meanwhile.
  bool takeHandedOver(std::function<void()>& call) ZEL_EXCLUDES(mutex_) {
    const std::function<void()> made = std::exchange(call, nullptr);  // its captures are destroyed without the lock
    const MutexLock lock(mutex_);
    return take(call);
  }

  // Ends the call. False where one was handed over meanwhile, which is then to be run first: no call is handed to a
  // thread that is leaving.
  bool end(std::function<void()>& call) ZEL_EXCLUDES(mutex_) {
    const std::function<void()> made = std::exchange(call, nullptr);
    const MutexLock lock(mutex_);
    if (take(call)) return false;
    if (--calls_ == 0) changed_.notify_all();
    return true;
  }

  void close() ZEL_EXCLUDES(mutex_) {
    {
      const MutexLock lock(mutex_);
      closed_ = true;
      changed_.notify_all();
      while (isBusyElsewhere() && !insideCallback()) changed_.wait(mutex_);
    }
    for (std::function<void()> doomed; takeFirst(doomed);) continue;  // each goes without the lock
  }

 private:
  bool take(std::function<void()>& call) ZEL_REQUIRES(mutex_) {
    if (calls_ != 1 || handedOver_.empty()) return false;
    call = std::move(handedOver_.front());
    handedOver_.pop_front();
    return true;
  }

  bool isBusyElsewhere() const ZEL_REQUIRES(mutex_) { return calls_ != 0 && caller_ != std::this_thread::get_id(); }

  bool takeFirst(std::function<void()>& call) ZEL_EXCLUDES(mutex_) {
    const std::function<void()> former = std::exchange(call, nullptr);
    const MutexLock lock(mutex_);
    if (handedOver_.empty()) return false;
    call = std::move(handedOver_.front());
    handedOver_.pop_front();
    return true;
  }

  Mutex mutex_;
  std::condition_variable_any changed_;
  int calls_ ZEL_GUARDED_BY(mutex_) = 0;           // in progress, one inside the other
  std::thread::id caller_ ZEL_GUARDED_BY(mutex_);  // on this thread
  std::deque<std::function<void()>> handedOver_ ZEL_GUARDED_BY(mutex_);
  bool closed_ ZEL_GUARDED_BY(mutex_) = false;
};

CallGate::CallGate() : state_(std::make_unique<State>()) {}
CallGate::~CallGate() = default;

bool CallGate::begin(std::function<void()>& kept) { return state_->begin(kept); }
void CallGate::makeHandedOver() {
  for (std::function<void()> next; state_->takeHandedOver(next);) next();
}
void CallGate::end() {
  for (std::function<void()> next; !state_->end(next);) next();
}
void CallGate::close() { state_->close(); }

}  // namespace zel

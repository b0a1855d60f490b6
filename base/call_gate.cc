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
  void enter(const std::function<void()>& call) ZEL_EXCLUDES(mutex_);
  void close() ZEL_EXCLUDES(mutex_);

 private:
  class Turn;
  bool isBusyElsewhere() const ZEL_REQUIRES(mutex_);
  bool begin(const std::function<void()>& call) ZEL_EXCLUDES(mutex_);
  bool takeHandedOver(std::function<void()>& call) ZEL_EXCLUDES(mutex_);
  void end() ZEL_EXCLUDES(mutex_);

  Mutex mutex_;
  std::condition_variable_any changed_;
  int calls_ ZEL_GUARDED_BY(mutex_) = 0;           // in progress, one inside the other
  std::thread::id caller_ ZEL_GUARDED_BY(mutex_);  // on this thread
  std::deque<std::function<void()>> handedOver_ ZEL_GUARDED_BY(mutex_);
  bool closed_ ZEL_GUARDED_BY(mutex_) = false;
};

// One call in progress; it also ends when the call throws.
class CallGate::State::Turn {
 public:
  explicit Turn(State& gate) : gate_(gate) {}
  ~Turn() { gate_.end(); }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

 private:
  State& gate_;
};

void CallGate::State::enter(const std::function<void()>& call) {
  if (!begin(call)) return;
  const Turn turn(*this);
  call();
  for (std::function<void()> next; takeHandedOver(next);) next();
}

bool CallGate::State::isBusyElsewhere() const { return calls_ != 0 && caller_ != std::this_thread::get_id(); }

// Whether the calling thread runs the call.
bool CallGate::State::begin(const std::function<void()>& call) {
  const MutexLock lock(mutex_);
  if (!closed_ && isBusyElsewhere() && insideCallback()) {
    handedOver_.push_back(call);
    return false;
  }
  while (!closed_ && isBusyElsewhere()) changed_.wait(mutex_);
  if (closed_) return false;
  ++calls_;
  caller_ = std::this_thread::get_id();
  return true;
}

// The outermost call runs the calls that were handed over meanwhile.
bool CallGate::State::takeHandedOver(std::function<void()>& call) {
  std::function<void()> made = std::exchange(call, nullptr);  // its captures are destroyed without the lock
  const MutexLock lock(mutex_);
  if (calls_ != 1 || handedOver_.empty()) return false;
  call = std::move(handedOver_.front());
  handedOver_.pop_front();
  return true;
}

void CallGate::State::end() {
  const MutexLock lock(mutex_);
  if (--calls_ == 0) changed_.notify_all();
}

void CallGate::State::close() {
  std::deque<std::function<void()>> doomed;
  const MutexLock lock(mutex_);
  closed_ = true;
  doomed.swap(handedOver_);
  changed_.notify_all();
  while (isBusyElsewhere() && !insideCallback()) changed_.wait(mutex_);
}

CallGate::CallGate() : state_(std::make_unique<State>()) {}
CallGate::~CallGate() = default;

void CallGate::enter(const std::function<void()>& call) { state_->enter(call); }
void CallGate::close() { state_->close(); }

}  // namespace zel

#pragma once

#include "platform/mutex.h"

namespace zel {

// Lets calls through one at a time until it is closed. close() waits for a call in progress on another thread and
// returns at once when it is called from inside the call, so after it nothing behind the gate runs any more.
// Thread: any thread; not while holding a lock that the call takes.
class CallGate {
 public:
  template <class Call>
  void enter(Call&& call) {
    const MutexLock lock(mutex_);
    if (!closed_) call();
  }

  void close() {
    const MutexLock lock(mutex_);
    closed_ = true;
  }

 private:
  RecursiveMutex mutex_;
  bool closed_ ZEL_GUARDED_BY(mutex_) = false;
};

}  // namespace zel

#pragma once

#include "base/mutex.h"

namespace zel {

// Lets the calls of one run through, one at a time, until it is closed.
//
// Thread: any thread; close() not inside of a call.
class RunGate {
 public:
  template <class Call>
  void enter(const Call& call) {
    const MutexLock lock(mutex_);
    if (isOpen_) call();
  }

  // Waits for a call in progress; the last one.
  void close() {
    const MutexLock lock(mutex_);
    isOpen_ = false;
  }

 private:
  Mutex mutex_;
  bool isOpen_ ZEL_GUARDED_BY(mutex_) = true;
};

}  // namespace zel

#pragma once

#include <semaphore>

#include <ZELTarkaSDK/platform/clock.h>

namespace zel {

// Held by one thread for its whole run, so that others join it by locking and unlocking. Its holder may lock it again,
// and then waits for good: that is defined for a semaphore, and would not be for a mutex.
// Thread: any thread.
class JoinLock {
 public:
  explicit JoinLock(platform::Clock& clock) : clock_(clock) {}

  void lock() { clock_.acquire(free_); }
  void unlock() { free_.release(); }

  // Waits until no thread holds it.
  void join() {
    lock();
    unlock();
  }

 private:
  platform::Clock& clock_;
  std::binary_semaphore free_{1};
};

}  // namespace zel

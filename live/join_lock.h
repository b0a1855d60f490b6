#pragma once

#include <semaphore>

#include <ZELTarkaSDK/platform/clock.h>

namespace zel {

// Held by a thread for its whole run, so that others join it by locking and unlocking. If its holder locks it again, it
// waits forever: this is defined for a semaphore, but not for a mutex.
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

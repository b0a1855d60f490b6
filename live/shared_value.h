#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

#include "base/mutex.h"

namespace zel {

// A value that several threads access, without any order between two such values.
template <class T>
class Relaxed {
 public:
  Relaxed(T value) : value_(value) {}  // NOLINT(google-explicit-constructor): stands for the value

  T get() const { return value_.load(std::memory_order_relaxed); }
  void set(T value) { value_.store(value, std::memory_order_relaxed); }
  void add(T change) { value_.fetch_add(change, std::memory_order_relaxed); }

 private:
  std::atomic<T> value_;
};

using RelaxedCount = Relaxed<std::uint64_t>;

// The same for a type that needs a lock.
template <class T>
class Guarded {
 public:
  T get() const {
    const MutexLock lock(mutex_);
    return value_;
  }
  // Returns the previous value, so that it is destroyed without the lock.
  T set(T value) {
    const MutexLock lock(mutex_);
    return std::exchange(value_, std::move(value));
  }

 private:
  mutable Mutex mutex_;
  T value_ ZEL_GUARDED_BY(mutex_){};
};

}  // namespace zel

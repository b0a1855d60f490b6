#pragma once

#include <atomic>
#include <cstdint>
#include <type_traits>
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
  Guarded() = default;
  explicit Guarded(T value) : value_(std::move(value)) {}

  T get() const {
    const MutexLock lock(mutex_);
    return value_;
  }
  // Returns the previous value, so that it is destroyed without the lock.
  T set(T value) {
    const MutexLock lock(mutex_);
    return std::exchange(value_, std::move(value));
  }
  // One member of it.
  template <class Member, class Whole>
  Member get(Member Whole::*member) const {
    const MutexLock lock(mutex_);
    return value_.*member;
  }
  template <class Member, class Whole>
  void set(Member Whole::*member, std::type_identity_t<Member> value) {
    const MutexLock lock(mutex_);
    std::swap(value_.*member, value);
  }
  // Calls with the value under the lock, and returns what the call does. The call must not come back here.
  template <class Call>
  auto with(const Call& call) {
    const MutexLock lock(mutex_);
    return call(value_);
  }
  template <class Call>
  auto with(const Call& call) const {
    const MutexLock lock(mutex_);
    return call(value_);
  }

 private:
  mutable Mutex mutex_;
  T value_ ZEL_GUARDED_BY(mutex_){};
};

}  // namespace zel

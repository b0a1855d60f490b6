#pragma once

#include <mutex>

// Clang's thread-safety annotations; other compilers see nothing.
#if defined(__clang__)
#define ZEL_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define ZEL_THREAD_ANNOTATION(x)
#endif
#define ZEL_CAPABILITY(x) ZEL_THREAD_ANNOTATION(capability(x))
#define ZEL_SCOPED_CAPABILITY ZEL_THREAD_ANNOTATION(scoped_lockable)
#define ZEL_GUARDED_BY(x) ZEL_THREAD_ANNOTATION(guarded_by(x))
#define ZEL_REQUIRES(...) ZEL_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define ZEL_EXCLUDES(...) ZEL_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define ZEL_ACQUIRE(...) ZEL_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define ZEL_RELEASE(...) ZEL_THREAD_ANNOTATION(release_capability(__VA_ARGS__))

namespace zel {

// std::mutex and std::recursive_mutex with the annotations that the standard types lack.
template <class Native>
class ZEL_CAPABILITY("mutex") BasicMutex {
 public:
  void lock() ZEL_ACQUIRE() { native_.lock(); }
  void unlock() ZEL_RELEASE() { native_.unlock(); }

 private:
  Native native_;
};

using Mutex = BasicMutex<std::mutex>;
using RecursiveMutex = BasicMutex<std::recursive_mutex>;

// Holds a mutex for a scope.
template <class Lockable>
class ZEL_SCOPED_CAPABILITY MutexLock {
 public:
  explicit MutexLock(Lockable& mutex) ZEL_ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
  ~MutexLock() ZEL_RELEASE() { mutex_.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Lockable& mutex_;
};

}  // namespace zel

#pragma once

#include <chrono>
#include <cstdint>
#include <semaphore>

namespace zel::platform {

// The host's wall clock.
// Units:  seconds since 1 January 2001 00:00:00 UTC, the epoch of every timestamp in the framework.
// Thread: any thread.
class Clock {
 public:
  virtual ~Clock() = default;

  // The current time. It may step backwards when the host's clock is corrected.
  virtual double absoluteTime() const = 0;

  // Seconds since an arbitrary moment, unaffected by corrections of the host's clock. The default is for platforms
  // whose wall clock is never corrected.
  virtual double steadyTime() const { return absoluteTime(); }

  // Blocks the calling thread for that many seconds; returns at once for zero or less.
  virtual void sleepFor(double seconds) = 0;

  // Blocks the calling thread until it has acquired the semaphore, forever if it is never released. A platform in
  // virtual time runs other threads meanwhile.
  virtual void acquire(std::binary_semaphore& semaphore) { semaphore.acquire(); }

  // The same, for at most that many seconds; false when it was not acquired in that time.
  virtual bool acquireFor(std::binary_semaphore& semaphore, double seconds) {
    return semaphore.try_acquire_for(std::chrono::duration<double>(seconds));
  }

  // How many seconds local time is ahead of UTC at that time; 0 when the host has no time zone.
  virtual std::int64_t localTimeOffset([[maybe_unused]] double absoluteTime) const { return 0; }
};

// Seconds in milliseconds, truncated toward zero.
inline std::int64_t wholeMilliseconds(double seconds) { return static_cast<std::int64_t>(seconds * 1000.0); }

// The current time in whole milliseconds since 1 January 2001 00:00:00 UTC, truncated toward zero.
inline std::int64_t absoluteTimeMilliseconds(const Clock& clock) { return wholeMilliseconds(clock.absoluteTime()); }

}  // namespace zel::platform

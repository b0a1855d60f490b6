#pragma once

#include <ZELTarkaSDK/platform/ports.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <utility>

#include "base/mutex.h"

namespace zel {

// Calls functions at their times, on the main queue, with one timer for all.
//
// Units:  seconds of the clock's steady time.
// Owner:  held by shared pointers; the ports must outlive close().
// Thread: any thread.
class Deadlines : public std::enable_shared_from_this<Deadlines> {
 public:
  // Its time, and a number of its own.
  using Id = std::pair<double, std::uint64_t>;

  explicit Deadlines(const platform::Ports& ports) : ports_(ports) {}

  Id add(double time, std::function<void()> call);
  // Afterwards its call does not begin.
  void remove(Id id);
  // Drops all of them; none is taken any more. Waits for one that is running, except inside a callback.
  void close();

  double now() const { return ports_.clock.steadyTime(); }

 private:
  void arm();
  void fire();

  const platform::Ports ports_;
  Mutex mutex_;
  std::map<Id, std::function<void()>> calls_ ZEL_GUARDED_BY(mutex_);
  std::uint64_t added_ ZEL_GUARDED_BY(mutex_) = 0;
  double armed_ ZEL_GUARDED_BY(mutex_) = kNever;  // the time that the timer is set to, or will be
  bool isClosed_ ZEL_GUARDED_BY(mutex_) = false;
  std::unique_ptr<platform::Timer> timer_ ZEL_GUARDED_BY(mutex_);

  static constexpr double kNever = std::numeric_limits<double>::infinity();
};

}  // namespace zel

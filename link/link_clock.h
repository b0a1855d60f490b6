#pragma once

#include <atomic>

#include <ZELTarkaSDK/platform/clock.h>

namespace zel {

// The time that a link lives by: the host's wall clock as it stood when the session was opened, carried on by the
// steady clock. Setting the host's clock meanwhile neither hides a silence nor makes one.
//
// Units:  seconds since 1 January 2001 UTC.
// Thread: any thread.
class LinkClock {
 public:
  // The clock must outlive the object.
  explicit LinkClock(const platform::Clock& clock) : clock_(clock) { anchor(); }

  // A session opens: from here on the wall clock of this moment counts.
  void anchor() { ahead_.store(clock_.absoluteTime() - clock_.steadyTime()); }

  double absoluteTime() const { return clock_.steadyTime() + ahead_.load(); }

 private:
  const platform::Clock& clock_;
  std::atomic<double> ahead_ = 0;  // of the wall clock over the steady one
};

}  // namespace zel

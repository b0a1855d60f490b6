#pragma once

#include <atomic>

#include <ZELTarkaSDK/platform/clock.h>

namespace zel {

// The link's clock: the host's wall clock at the opening of the session, advanced by the steady clock. Setting the
// host's clock neither hides a silent link nor fakes one.
//
// Units:  seconds since 1 January 2001 UTC.
// Thread: any thread.
class LinkClock {
 public:
  // The clock must outlive the object.
  explicit LinkClock(const platform::Clock& clock) : clock_(clock) { anchor(); }

  // Called when a session opens: takes the current wall clock.
  void anchor() { ahead_.store(clock_.absoluteTime() - clock_.steadyTime()); }

  double absoluteTime() const { return clock_.steadyTime() + ahead_.load(); }

 private:
  const platform::Clock& clock_;
  std::atomic<double> ahead_ = 0;  // wall clock minus steady clock
};

}  // namespace zel

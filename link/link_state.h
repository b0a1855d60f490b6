#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include <ZELTarkaSDK/LinkStatus.h>
#include <ZELTarkaSDK/Observation.h>
#include <ZELTarkaSDK/platform/clock.h>

#include "base/mutex.h"
#include "base/observer_list.h"

namespace zel {

// The link's status, and what holds while it is up.
//
//   closed --opened()--> open --received()--> flowing --silence--> silent
//
// A frame makes any state but closed flowing; opened() makes any state open again; close() closes any.
//
// Thread: any thread. Observers run on the thread that makes the change.
class LinkState {
 public:
  // Owner:  the clock must outlive the object.
  explicit LinkState(const platform::Clock& clock) : clock_(clock), ahead_(clock.absoluteTime() - clock.steadyTime()) {}

  LinkStatus status() const { return status_.load(); }
  [[nodiscard]] Observation observe(std::function<void(std::uint64_t)> observer) {
    return observers_.add(std::move(observer));
  }

  // Seconds since 1 January 2001 UTC, as the link counts them: the host's wall clock at the opening of the session,
  // advanced by the steady clock. Setting the host's clock neither hides a silent link nor fakes one.
  double absoluteTime() const { return clock_.steadyTime() + ahead_.load(); }
  // When data last arrived, or a session opened; -1 while closed.
  double lastReceived() const { return lastReceived_.load(); }
  // Added to camera timestamps to get phone time, in milliseconds; 0 until it has been measured, and while closed.
  std::int64_t timeOffset() const { return timeOffset_.load(); }
  // Counts only while a session is up.
  void setTimeOffset(std::int64_t milliseconds) ZEL_EXCLUDES(mutex_);

  // A session has opened. stillOpen: asked with the lock held, so that a session which somebody has closed meanwhile
  // brings nothing back to life.
  void opened(const std::function<bool()>& stillOpen) ZEL_EXCLUDES(mutex_);
  // A frame has come. Without effect while closed: a session's last frame must not bring its connection back to life.
  void received() ZEL_EXCLUDES(mutex_);
  // Looks whether data has stopped coming. Without effect unless the status is `seen` still: a session that is reopened
  // meanwhile must stay open, since the marker is asked for in that state alone.
  void checkSilence(LinkStatus seen) ZEL_EXCLUDES(mutex_);
  void close() ZEL_EXCLUDES(mutex_);

 private:
  // The only writer of the status. False where it is that already.
  bool set(LinkStatus status) { return status_.exchange(status) != status; }
  void tell(LinkStatus status) { observers_.notify(static_cast<std::uint64_t>(status)); }

  const platform::Clock& clock_;
  std::atomic<double> ahead_;  // the wall clock minus the steady clock
  ObserverList<std::uint64_t> observers_;

  // Orders what the session thread reports against the closing of the session.
  Mutex mutex_;
  // Written with the lock held, read without it.
  std::atomic<LinkStatus> status_ = LinkStatus::closed;
  std::atomic<double> lastReceived_ = -1.0;
  std::atomic<std::int64_t> timeOffset_ = 0;
};

}  // namespace zel

#pragma once

#include <ZELTarkaSDK/LinkStatus.h>

#include <algorithm>
#include <optional>

namespace zel {

// When a link that does not heal by itself is opened again: after a second, and after each attempt after twice as long,
// at most 4 s, until frames arrive.
//
// Units: seconds of any clock that goes on.
class LinkKeeper {
 public:
  // Asked a few times a second. isAttached: there is a camera, without a session. A session that was opened a moment
  // ago is open and is given its time; it becomes silent after that.
  bool isDue(LinkStatus status, bool isAttached, double now) {
    if (status == LinkStatus::flowing) pause_ = kFirstPause;
    const bool isBroken = status == LinkStatus::silent || (status == LinkStatus::closed && isAttached);
    if (!isBroken) brokenSince_.reset();
    if (!isBroken || now - brokenSince_.emplace(brokenSince_.value_or(now)) < pause_) return false;
    brokenSince_.reset();
    pause_ = std::min(2 * pause_, kLongestPause);
    return true;
  }

 private:
  static constexpr double kFirstPause = 1, kLongestPause = 4;

  double pause_ = kFirstPause;
  std::optional<double> brokenSince_;
};

}  // namespace zel

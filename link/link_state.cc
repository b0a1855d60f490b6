#include "link/link_state.h"

namespace zel {
namespace {

constexpr double kFirstFrameTimeout = 5.0;  // seconds; a fresh session is given longer than a running one
constexpr double kSilenceTimeout = 3.0;
constexpr double kNeverReceived = -1.0;

}  // namespace

void LinkState::opened(const std::function<bool()>& stillOpen) {
  ahead_.store(clock_.absoluteTime() - clock_.steadyTime());
  const double now = absoluteTime();
  {
    const MutexLock lock(mutex_);
    if (!stillOpen()) return;
    lastReceived_.store(now);
    if (!set(LinkStatus::open)) return;
  }
  tell(LinkStatus::open);
}

void LinkState::received() {
  const double now = absoluteTime();
  {
    const MutexLock lock(mutex_);
    if (status_.load() == LinkStatus::closed) return;
    lastReceived_.store(now);
    if (!set(LinkStatus::flowing)) return;
  }
  tell(LinkStatus::flowing);
}

void LinkState::checkSilence(LinkStatus seen) {
  const double now = absoluteTime();
  LinkStatus next = seen;
  {
    const MutexLock lock(mutex_);
    if (seen == LinkStatus::closed || status_.load() != seen) return;
    const double silence = now - lastReceived_.load();
    if (seen == LinkStatus::open) {
      if (silence > kFirstFrameTimeout) next = LinkStatus::silent;
    } else {
      next = silence > kSilenceTimeout ? LinkStatus::silent : LinkStatus::flowing;
    }
    if (!set(next)) return;
  }
  tell(next);
}

void LinkState::setTimeOffset(std::int64_t milliseconds) {
  const MutexLock lock(mutex_);
  if (status_.load() != LinkStatus::closed) timeOffset_.store(milliseconds);
}

void LinkState::close() {
  {
    const MutexLock lock(mutex_);
    timeOffset_.store(0);
    lastReceived_.store(kNeverReceived);
    if (!set(LinkStatus::closed)) return;
  }
  tell(LinkStatus::closed);
}

}  // namespace zel

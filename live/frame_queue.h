#pragma once

#include <cstddef>
#include <deque>
#include <utility>

#include "live/live_frame.h"
#include "platform/mutex.h"

namespace zel {

// Pictures that wait for the next stage: the five newest. A slow stage costs pictures, never memory or delay.
// Thread: any thread; never waits.
class FrameQueue {
 public:
  static constexpr std::size_t kMost = 5;
  static constexpr double kPollInterval = 0.01;  // seconds that its reader sleeps when there is none

  // Returns false where the oldest had to go for it.
  bool append(LiveFrame frame) {
    LiveFrame oldest;  // let go after the lock
    const MutexLock lock(mutex_);
    const bool full = frames_.size() >= kMost;
    if (full) {
      oldest = std::move(frames_.front());
      frames_.pop_front();
    }
    frames_.push_back(std::move(frame));
    return !full;
  }

  // The oldest; null when there is none.
  LiveFrame take() {
    const MutexLock lock(mutex_);
    if (frames_.empty()) return nullptr;
    LiveFrame oldest = std::move(frames_.front());
    frames_.pop_front();
    return oldest;
  }

  void clear() {
    std::deque<LiveFrame> all;  // let go after the lock
    const MutexLock lock(mutex_);
    all.swap(frames_);
  }

  std::size_t size() const {
    const MutexLock lock(mutex_);
    return frames_.size();
  }

 private:
  mutable Mutex mutex_;
  std::deque<LiveFrame> frames_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel

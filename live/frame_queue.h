#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <semaphore>
#include <utility>

#include <ZELTarkaSDK/platform/clock.h>

#include "base/mutex.h"
#include "media/media_pixel_buffer.h"

namespace zel {

// A picture in the live pipeline; its timestamp counts from the run's first sound.
using LiveFrame = std::shared_ptr<const orq::MediaPixelBuffer>;

// The queue before a stage: the five newest pictures. A slow stage drops pictures, and adds neither memory nor delay.
// Thread: any thread; only waitForOne waits.
class FrameQueue {
 public:
  static constexpr std::size_t kMost = 5;
  static constexpr double kPollInterval = 0.01;  // seconds: the longest sleep of its reader

  // Returns false when the oldest was dropped for it.
  // Errors: std::bad_alloc; those that wait are as they were.
  bool append(LiveFrame frame) {
    LiveFrame oldest;  // destroyed after the lock
    const MutexLock lock(mutex_);
    const bool full = frames_.size() >= kMost;
    frames_.push_back(std::move(frame));
    if (full) {
      oldest = std::move(frames_.front());
      frames_.pop_front();
    }
    if (!std::exchange(isTold_, true)) told_.release();
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

  // Lets the only reader sleep while the queue is empty, at most kPollInterval, because it has to notice a stop. A new
  // picture ends the sleep; otherwise two stages would delay every picture by 10 ms.
  void waitForOne(platform::Clock& clock) {
    if (!clock.acquireFor(told_, kPollInterval)) return;
    const MutexLock lock(mutex_);
    isTold_ = false;
  }

  void clear() {
    while (take()) continue;  // one by one, each let go after the lock; a queue to swap with would take memory
  }

  std::size_t size() const {
    const MutexLock lock(mutex_);
    return frames_.size();
  }

 private:
  mutable Mutex mutex_;
  std::deque<LiveFrame> frames_ ZEL_GUARDED_BY(mutex_);
  bool isTold_ ZEL_GUARDED_BY(mutex_) = false;  // the reader was woken for a picture
  std::binary_semaphore told_{0};
};

}  // namespace zel

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

// A picture on its way through the live pipeline; its time counts from the run's first sound.
using LiveFrame = std::shared_ptr<const orq::MediaPixelBuffer>;

// Pictures that wait for the next stage: the five newest. A slow stage costs pictures, never memory or delay.
// Thread: any thread; only waitForOne waits.
class FrameQueue {
 public:
  static constexpr std::size_t kMost = 5;
  static constexpr double kPollInterval = 0.01;  // seconds that its reader sleeps at most when there is none

  // Returns false where the oldest had to go for it.
  // Errors: std::bad_alloc; those that wait are as they were.
  bool append(LiveFrame frame) {
    LiveFrame oldest;  // let go after the lock
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

  // Lets the one reader sleep for as long as it may while there is none: it has a stop to look for. A picture that
  // comes ends the sleep; two stages that slept on would cost every picture 10 ms.
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
  bool isTold_ ZEL_GUARDED_BY(mutex_) = false;  // the reader, of a picture
  std::binary_semaphore told_{0};
};

}  // namespace zel

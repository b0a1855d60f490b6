#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <utility>

#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include "base/mutex.h"
#include "bench/child_process.h"

namespace zel::bench {

// The time of a camera that sends as fast as a live pipeline takes its pictures, and never so fast that one is dropped.
// Thread: any thread.
class MediaClock {
 public:
  // most: pictures under way. At least 2, since a picture is whole when the next one begins.
  explicit MediaClock(std::uint64_t most) : most_(most) {}

  void follow(std::shared_ptr<const ZELLiveDataSource> source) {
    const MutexLock lock(mutex_);
    source_ = std::move(source);
  }

  // Lets no more pictures come.
  void stop() {
    const MutexLock lock(mutex_);
    stopped_ = true;
  }

  // Goes on by a picture when there is room for one and the one before has arrived, or seems not to come.
  // Units:  seconds.
  double now() {
    const MutexLock lock(mutex_);
    processorSeconds_ = threadProcessorSeconds();
    if (stopped_) return newest_;
    const auto time = Clock::now();
    if (!source_) return newest_ = std::chrono::duration<double>(time - start_).count();
    const auto player = source_->player();
    const std::uint64_t arrived = player ? player->statistics().units : 0;
    const bool isWaiting = arrived == arrived_ && time - sent_ < std::chrono::milliseconds(50);
    if (isWaiting || arrived + 2 > finished(*source_) + most_) return newest_;  // one more is held back by the cutter
    arrived_ = arrived;
    sent_ = time;
    return newest_ += 1 / kRate;
  }

  // The processor time of the thread that looks at the clock, which is the camera's, at its latest look.
  double processorSeconds() {
    const MutexLock lock(mutex_);
    return processorSeconds_;
  }

  // Pictures that have left the pipeline, or were lost in it.
  static std::uint64_t finished(const ZELLiveDataSource& source) {
    const LiveStatistics live = source.statistics();
    const auto player = source.player();
    const PreviewStatistics preview = player ? player->statistics() : PreviewStatistics();
    return preview.dropped + preview.withoutPicture + live.notWanted + live.droppedBeforeStitching + live.notStitched +
           live.droppedBeforeEncoding + live.notEncoded + live.encoded;
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr double kRate = 30;

  const std::uint64_t most_;
  const Clock::time_point start_ = Clock::now();

  Mutex mutex_;
  std::shared_ptr<const ZELLiveDataSource> source_ ZEL_GUARDED_BY(mutex_);
  Clock::time_point sent_ ZEL_GUARDED_BY(mutex_);     // when the latest picture was
  std::uint64_t arrived_ ZEL_GUARDED_BY(mutex_) = 0;  // pictures before it
  double newest_ ZEL_GUARDED_BY(mutex_) = 0;
  bool stopped_ ZEL_GUARDED_BY(mutex_) = false;
  double processorSeconds_ ZEL_GUARDED_BY(mutex_) = 0;
};

}  // namespace zel::bench

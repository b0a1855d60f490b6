#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <utility>

#include <ZELTarkaSDK/platform/forwarding.h>
#include "apps/zelcam/media_clock.h"
#include "apps/zelcam/muxing/picture_joiner.h"
#include "base/mutex.h"

namespace zel::app {

// The times at which the last NAL units of the latest pictures were decoded, by timestamp.
// Thread: any thread.
class ArrivalClock {
 public:
  using Clock = std::chrono::steady_clock;

  void note(std::int64_t time) {
    const MutexLock lock(mutex_);
    if (!arrivals_.empty() && arrivals_.back().first == time) arrivals_.pop_back();  // another slice
    arrivals_.emplace_back(time, Clock::now());
    if (arrivals_.size() > kMost) arrivals_.pop_front();
  }

  // The time of that picture's last unit; now, if unknown.
  Clock::time_point of(std::int64_t time) const {
    const MutexLock lock(mutex_);
    for (auto arrival = arrivals_.rbegin(); arrival != arrivals_.rend(); ++arrival)
      if (arrival->first == time) return arrival->second;
    return Clock::now();
  }

 private:
  static constexpr std::size_t kMost = 64;  // pictures; more than a live pipeline holds

  mutable Mutex mutex_;
  std::deque<std::pair<std::int64_t, Clock::time_point>> arrivals_ ZEL_GUARDED_BY(mutex_);
};

// Decoders whose pictures have their true timestamps, and that record when a unit is decoded.
// Owner:  the arguments must outlive them.
class NotingDecoders final : public platform::ForwardingVideoDecoders {
 public:
  NotingDecoders(platform::VideoDecoders& wrapped, const MediaClock& times, ArrivalClock& arrivals)
      : ForwardingVideoDecoders(wrapped), times_(times), arrivals_(arrivals) {}

  platform::DecoderCreation create(platform::VideoDecoder::Bytes sps, platform::VideoDecoder::Bytes pps) override {
    platform::DecoderCreation made = ForwardingVideoDecoders::create(sps, pps);
    if (made.decoder) made.decoder = std::make_unique<Decoder>(std::move(made.decoder), times_, arrivals_);
    return made;
  }

 private:
  class Decoder final : public platform::ForwardingVideoDecoder {
   public:
    Decoder(std::unique_ptr<VideoDecoder> wrapped, const MediaClock& times, ArrivalClock& arrivals)
        : ForwardingVideoDecoder(std::move(wrapped)), times_(times), arrivals_(arrivals) {}

    platform::DecodeResult decode(Bytes unit, std::int64_t timestamp) override {
      if (beginsPicture(unit)) time_ = times_.timeOfPicture(timestamp);
      arrivals_.note(time_);
      return ForwardingVideoDecoder::decode(unit, time_);
    }

   private:
    const MediaClock& times_;
    ArrivalClock& arrivals_;
    std::int64_t time_ = 0;  // of the newest picture
  };

  const MediaClock& times_;
  ArrivalClock& arrivals_;
};

}  // namespace zel::app

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <utility>

#include "platform/forwarding.h"
#include "platform/mutex.h"

namespace zel::app {

// When the last units of the latest pictures were taken for decoding, by their timestamps. Thread: any thread.
class ArrivalClock {
 public:
  using Clock = std::chrono::steady_clock;

  void note(std::int64_t timestamp) {
    const MutexLock lock(mutex_);
    if (!arrivals_.empty() && arrivals_.back().first == timestamp) arrivals_.pop_back();  // one slice more
    arrivals_.emplace_back(timestamp, Clock::now());
    if (arrivals_.size() > kMost) arrivals_.pop_front();
  }

  // When that picture's last unit was; now, if it is not known.
  Clock::time_point of(std::int64_t timestamp) const {
    const MutexLock lock(mutex_);
    for (auto arrival = arrivals_.rbegin(); arrival != arrivals_.rend(); ++arrival)
      if (arrival->first == timestamp) return arrival->second;
    return Clock::now();
  }

 private:
  static constexpr std::size_t kMost = 64;  // pictures; more than a live pipeline holds

  mutable Mutex mutex_;
  std::deque<std::pair<std::int64_t, Clock::time_point>> arrivals_ ZEL_GUARDED_BY(mutex_);
};

// Decoders that note when a unit is taken. Owner: the arguments must outlive them.
class NotingDecoders final : public platform::ForwardingVideoDecoders {
 public:
  NotingDecoders(platform::VideoDecoders& wrapped, ArrivalClock& clock)
      : ForwardingVideoDecoders(wrapped), clock_(clock) {}

  platform::DecoderCreation create(platform::VideoDecoder::Bytes sps, platform::VideoDecoder::Bytes pps) override {
    platform::DecoderCreation made = ForwardingVideoDecoders::create(sps, pps);
    if (made.decoder) made.decoder = std::make_unique<Decoder>(std::move(made.decoder), clock_);
    return made;
  }

 private:
  class Decoder final : public platform::ForwardingVideoDecoder {
   public:
    Decoder(std::unique_ptr<VideoDecoder> wrapped, ArrivalClock& clock)
        : ForwardingVideoDecoder(std::move(wrapped)), clock_(clock) {}

    platform::DecodeResult decode(Bytes unit, std::int64_t timestamp) override {
      clock_.note(timestamp);
      return ForwardingVideoDecoder::decode(unit, timestamp);
    }

   private:
    ArrivalClock& clock_;
  };

  ArrivalClock& clock_;
};

}  // namespace zel::app

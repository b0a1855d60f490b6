#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <utility>

#include "platform/forwarding.h"

namespace zel::app {

// When the newest unit was taken for decoding. Thread: any thread.
class ArrivalClock {
 public:
  using Clock = std::chrono::steady_clock;

  void note() { newest_.store(Clock::now()); }
  Clock::time_point newest() const { return newest_.load(); }

 private:
  std::atomic<Clock::time_point> newest_{Clock::now()};
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
      clock_.note();
      return ForwardingVideoDecoder::decode(unit, timestamp);
    }

   private:
    ArrivalClock& clock_;
  };

  ArrivalClock& clock_;
};

}  // namespace zel::app

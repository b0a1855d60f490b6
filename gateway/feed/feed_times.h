#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>

#include <ZELTarkaSDK/MediaPacket.h>

namespace zel::gateway {

// Times of a feed, which outlives the streams that it is fed with: each track only goes forward, also when another
// stream begins at 0 again or a stream's times jump back.
//
// Units:  microseconds.
// Thread: one at a time.
class FeedTimes {
 public:
  // Another stream begins: its first time is placed behind everything so far.
  void beginStream() { isNew_ = true; }

  // The packet's time in the feed, later than the one before it on its track.
  std::int64_t place(const MediaPacket& packet) {
    std::optional<std::int64_t>& newest = packet.track == Track::video ? newestVideo_ : newestAudio_;
    std::int64_t time = packet.time + shift_;
    if (isNew_ || (newest && time < *newest - kJump)) {
      time = std::max(time, behindAll());
      shift_ = time - packet.time;
    }
    isNew_ = false;
    newest = std::max(time, newest ? *newest + 1 : 0);
    return *newest;
  }

  // From the stream's times to the feed's; another one belongs to another stream, or to another clock.
  std::int64_t shift() const { return shift_; }

 private:
  static constexpr std::int64_t kJump = 1'000'000;  // what lags less is late, not of another clock
  static constexpr std::int64_t kStep = 40'000;     // between two streams

  std::int64_t behindAll() const {
    std::int64_t end = 0;
    for (const auto& newest : {newestVideo_, newestAudio_})
      if (newest) end = std::max(end, *newest + kStep);
    return end;
  }

  bool isNew_ = true;
  std::int64_t shift_ = 0;
  std::optional<std::int64_t> newestVideo_, newestAudio_;
};

}  // namespace zel::gateway

#include "outputs/timeline.h"

#include <algorithm>
#include <cstdlib>

#include <ZELTarkaSDK/AudioConfig.h>

namespace zel {
namespace {

constexpr std::int64_t kMicros = 1000;                     // in a millisecond
constexpr std::int64_t kFurthest = std::int64_t{1} << 50;  // milliseconds; larger times are invalid
constexpr std::int64_t kSmallest = 1 * kMicros;            // between two pictures, or two frames of sound
constexpr std::int64_t kClockWasSet = 1'000'000;           // a step back from which the clock was set
constexpr std::int64_t kClockWasSetAhead = 3'600'000'000;  // a step ahead that is longer than any pause
constexpr std::int64_t kRounding = 2 * kMicros;            // rounding error of whole milliseconds
constexpr std::int64_t kFirstStep = 33'333;                // after a run of a single picture

}  // namespace

Timeline::Timeline(int rate) : rate_(rate) {}

std::int64_t Timeline::frameLength(std::int64_t count) const { return count * kSamplesPerFrame * 1'000'000 / rate_; }

void Timeline::beginRun() {
  shift_.reset();
  if (!newestVideo_) return;
  videoBroke_ = audioBroke_ = true;
  begin_ = *newestVideo_ + (videoStep_ > 0 ? videoStep_ : kFirstStep);
  if (newestAudio_) begin_ = std::max(begin_, *newestAudio_ + frameLength(1));
}

// If the camera's clock was set, both tracks continue from there. In a stream that begins before the clocks are
// synchronised, the times step by years.
std::optional<std::int64_t> Timeline::placed(std::int64_t milliseconds, std::optional<std::int64_t> newest) {
  const std::int64_t came = milliseconds * kMicros;
  const std::int64_t step = newest ? came + *shift_ - *newest : 0;
  if (step < -kClockWasSet || step > kClockWasSetAhead) {
    shift_ = *newest + videoStep_ - came;
    videoBroke_ = audioBroke_ = true;
  }
  return came + *shift_;
}

std::optional<std::int64_t> Timeline::video(std::int64_t milliseconds, bool key) {
  if (milliseconds < -kFurthest || milliseconds > kFurthest) return std::nullopt;
  if (!shift_ && !key) return std::nullopt;
  if (!shift_) shift_ = begin_ - milliseconds * kMicros;
  std::int64_t time = *placed(milliseconds, newestVideo_);
  if (newestVideo_) {
    time = std::max(time, *newestVideo_ + kSmallest);
    videoStep_ = std::min(time - *newestVideo_, kClockWasSet);
  }
  newestVideo_ = time;
  return time;
}

std::optional<std::int64_t> Timeline::pictureAt(std::int64_t milliseconds) const {
  if (!shift_ || milliseconds < -kFurthest || milliseconds > kFurthest) return std::nullopt;
  const std::int64_t time = milliseconds * kMicros + *shift_;
  const std::int64_t step = newestVideo_ ? time - *newestVideo_ : 0;
  if (time < begin_ || step < -kClockWasSet || step > kClockWasSetAhead) return std::nullopt;
  return time;
}

std::optional<std::int64_t> Timeline::audio(std::int64_t milliseconds) {
  if (!shift_ || milliseconds < -kFurthest || milliseconds > kFurthest) return std::nullopt;
  std::int64_t time = *placed(milliseconds, newestAudio_);
  if (time < begin_) return std::nullopt;
  const std::int64_t expected = soundBegin_ + frameLength(soundFrames_);
  if (newestAudio_ && std::abs(time - expected) <= kRounding) {
    time = expected;
    ++soundFrames_;
  } else {
    if (newestAudio_) time = std::max(time, *newestAudio_ + kSmallest);
    soundBegin_ = time;
    soundFrames_ = 1;
  }
  newestAudio_ = time;
  return time;
}

}  // namespace zel

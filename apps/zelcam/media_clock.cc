#include "apps/zelcam/media_clock.h"

#include <algorithm>
#include <cmath>

#include "apps/zelcam/muxing/audio_config.h"
#include "apps/zelcam/muxing/picture_joiner.h"

namespace zel::app {
namespace {

constexpr std::int64_t kTellsTimes = 190;  // firmware

}  // namespace

void MediaClock::begin(std::int64_t firewareVersion, int picturesPerSecond) {
  const MutexLock lock(mutex_);
  picturesPerSecond_ = picturesPerSecond;
  paced_.reset();
  if (firewareVersion < kTellsTimes) paced_.emplace(picturesPerSecond);
  next_.reset();
  times_.clear();
  unplaced_ = 0;
}

std::optional<std::int64_t> MediaClock::slice(Bytes unit, std::int64_t stamp) {
  const MutexLock lock(mutex_);
  const auto came = std::exchange(next_, Moment{stamp, paced_ ? paced_->now() : std::nullopt});
  if (!beginsPicture(unit)) return std::nullopt;
  const std::int64_t time = timeOf(came, stamp);
  times_.emplace_back(stamp, time);
  if (times_.size() > kMost) times_.pop_front();
  return time;
}

std::int64_t MediaClock::timeOf(const std::optional<Moment>& came, std::int64_t stamp) {
  if (paced_) return paced(came, stamp);
  return came ? came->stamp : stamp;
}

// Before the first sound only the player's count is known, which includes this picture.
std::int64_t MediaClock::paced(const std::optional<Moment>& came, std::int64_t stamp) {
  const std::int64_t step = 1000 / picturesPerSecond_;
  if (!came || !came->paced) {
    unplaced_ = std::min(unplaced_ + 1, kMost - 1);
    return stamp - step;
  }
  const std::int64_t time = std::llround(paced_->picture(*came->paced));
  for (std::int64_t back = 1; unplaced_ > 0; --unplaced_, ++back)
    times_[times_.size() - static_cast<std::size_t>(back)].second = time - back * step;
  return time;
}

void MediaClock::soundConfig(Bytes audioSpecificConfig) {
  const auto config = parseAudioConfig(audioSpecificConfig);
  const MutexLock lock(mutex_);
  if (paced_ && config) paced_->setSoundRate(config->rate);
}

std::int64_t MediaClock::sound(std::int64_t stamp) {
  const MutexLock lock(mutex_);
  return paced_ ? std::llround(paced_->sound(static_cast<double>(stamp))) : stamp;
}

std::int64_t MediaClock::timeOfPicture(std::int64_t stamp) const {
  const MutexLock lock(mutex_);
  for (auto picture = times_.rbegin(); picture != times_.rend(); ++picture)
    if (picture->first == stamp) return picture->second;
  return stamp;
}

}  // namespace zel::app

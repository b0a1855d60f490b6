#include "outputs/media_clock.h"

#include <ZELTarkaSDK/WireConstants.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include <ZELTarkaSDK/AudioConfig.h>

#include "outputs/picture_joiner.h"

namespace zel {

void MediaClock::begin(std::int64_t firewareVersion, int picturesPerSecond) {
  const MutexLock lock(mutex_);
  picturesPerSecond_ = picturesPerSecond;
  paced_.reset();
  if (firewareVersion < kFirewareVersion190) paced_.emplace(picturesPerSecond);
  next_.reset();
  pictures_.clear();
  unplaced_ = 0;
}

std::optional<std::int64_t> MediaClock::slice(Bytes unit, std::int64_t stamp, TimePoint now) {
  const MutexLock lock(mutex_);
  const auto came = std::exchange(next_, Moment{stamp, paced_ ? paced_->now() : std::nullopt});
  if (!beginsPicture(unit)) {
    if (!pictures_.empty()) pictures_.back().picture.arrival = now;
    return std::nullopt;
  }
  const std::int64_t time = timeOf(came, stamp);
  pictures_.push_back({stamp, {time, now}});
  if (pictures_.size() > kMost) pictures_.pop_front();
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
    pictures_[pictures_.size() - static_cast<std::size_t>(back)].picture.time = time - back * step;
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

MediaClock::Picture MediaClock::pictureOf(std::int64_t stamp) const {
  const MutexLock lock(mutex_);
  for (auto known = pictures_.rbegin(); known != pictures_.rend(); ++known)
    if (known->stamp == stamp) return known->picture;
  return {stamp, std::chrono::steady_clock::now()};
}

// Times come from the camera: a difference beyond 64 bits wraps.
std::int64_t MediaClock::lag() const {
  const MutexLock lock(mutex_);
  if (pictures_.empty()) return 0;
  const auto& [stamp, picture] = pictures_.back();
  const std::uint64_t lag = static_cast<std::uint64_t>(stamp) - static_cast<std::uint64_t>(picture.time);
  return lag <= std::uint64_t{kMostLag} ? static_cast<std::int64_t>(lag) : 0;
}

}  // namespace zel

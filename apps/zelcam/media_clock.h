#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <utility>

#include "apps/zelcam/paced_times.h"
#include "base/mutex.h"

namespace zel::app {

// The true times of the camera's pictures and sound.
//
// The preview player knows that a unit is complete only when the next one begins, and gives it the timestamp that is
// current by then. That is the next picture's time for a picture of one slice, and its own for one of several slices. A
// unit's true time is therefore the timestamp of the previous unit.
// A camera before firmware 190 sends no times, and the player synchronises its own clocks only once a second. Its
// pictures get their times from the sound that arrives with them.
//
// Units:  milliseconds.
// Thread: any thread; slices and sound in the order of arrival, on the session thread.
class MediaClock {
 public:
  using Bytes = std::span<const std::uint8_t>;

  // Begins a stream. Earlier times are dropped.
  void begin(std::int64_t firewareVersion, int picturesPerSecond);

  // A slice from the player. Returns the picture's time, nothing for a further slice of a picture.
  std::optional<std::int64_t> slice(Bytes unit, std::int64_t stamp);

  // The sound's configuration, and a frame of it. Returns the frame's time.
  void soundConfig(Bytes audioSpecificConfig);
  std::int64_t sound(std::int64_t stamp);

  // The time of the picture whose first slice had that timestamp; the timestamp itself if unknown. Without camera
  // times, a picture before any sound gets its time from the next picture, so ask for it only after that has begun.
  std::int64_t timeOfPicture(std::int64_t stamp) const;

 private:
  static constexpr std::size_t kMost = 256;  // pictures; more than are normally queued for decoding

  // The state when a unit got its timestamp, which is when the first bytes of the next one had arrived.
  struct Moment {
    std::int64_t stamp = 0;
    std::optional<double> paced;
  };

  std::int64_t timeOf(const std::optional<Moment>& came, std::int64_t stamp) ZEL_REQUIRES(mutex_);
  std::int64_t paced(const std::optional<Moment>& came, std::int64_t stamp) ZEL_REQUIRES(mutex_);

  mutable Mutex mutex_;
  std::optional<PacedTimes> paced_ ZEL_GUARDED_BY(mutex_);  // for a camera without times
  int picturesPerSecond_ ZEL_GUARDED_BY(mutex_) = 30;
  std::optional<Moment> next_ ZEL_GUARDED_BY(mutex_);                               // of the unit after the newest one
  std::deque<std::pair<std::int64_t, std::int64_t>> times_ ZEL_GUARDED_BY(mutex_);  // of pictures, by timestamp
  std::size_t unplaced_ ZEL_GUARDED_BY(mutex_) = 0;                                 // newest ones without a time
};

}  // namespace zel::app

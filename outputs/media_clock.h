#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>

#include "base/mutex.h"
#include "outputs/paced_times.h"

namespace zel {

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
  using TimePoint = std::chrono::steady_clock::time_point;

  struct Picture {
    std::int64_t time = 0;
    TimePoint arrival;  // of its last slice so far
  };

  // Begins a stream. Earlier times are dropped.
  void begin(std::int64_t firewareVersion, int picturesPerSecond);

  // A slice as the player hands it on. The picture's time, nothing for a slice that goes on with a picture.
  std::optional<std::int64_t> slice(Bytes unit, std::int64_t stamp, TimePoint now = std::chrono::steady_clock::now());

  // The sound's configuration, and a frame of it. Returns the frame's time.
  void soundConfig(Bytes audioSpecificConfig);
  std::int64_t sound(std::int64_t stamp);

  // The picture whose first slice bore that stamp. Where it is not known, the stamp is its time, and it came now. One
  // that came before any sound of a camera without times is placed by the next, and so is best asked for when that has
  // begun.
  Picture pictureOf(std::int64_t stamp) const;

  // How far the newest picture's stamp lags its time; 0 before the first, and where the camera's clock was set between.
  std::int64_t lag() const;

 private:
  static constexpr std::size_t kMost = 256;  // pictures; more than wait to be decoded unless nothing is
  static constexpr std::int64_t kMostLag = 1000;

  // The state when a unit got its timestamp, which is when the first bytes of the next one had arrived.
  struct Moment {
    std::int64_t stamp = 0;
    std::optional<double> paced;
  };
  struct Known {
    std::int64_t stamp = 0;
    Picture picture;
  };

  std::int64_t timeOf(const std::optional<Moment>& came, std::int64_t stamp) ZEL_REQUIRES(mutex_);
  std::int64_t paced(const std::optional<Moment>& came, std::int64_t stamp) ZEL_REQUIRES(mutex_);

  mutable Mutex mutex_;
  std::optional<PacedTimes> paced_ ZEL_GUARDED_BY(mutex_);  // for a camera without times
  int picturesPerSecond_ ZEL_GUARDED_BY(mutex_) = 30;
  std::optional<Moment> next_ ZEL_GUARDED_BY(mutex_);  // of the unit behind the newest one
  std::deque<Known> pictures_ ZEL_GUARDED_BY(mutex_);
  std::size_t unplaced_ ZEL_GUARDED_BY(mutex_) = 0;  // the newest of them
};

}  // namespace zel

#pragma once

#include <ZELTarkaSDK/MediaPacket.h>

#include <cstdint>
#include <optional>
#include <utility>

namespace zel {

// Joins the times of a source's runs to one timeline for all outputs. It begins with the first keyframe, continues
// where the previous run ended, and never goes backwards on either track. Sound at the camera's rate gets times that
// are exact to the sample.
// Units:  milliseconds in, microseconds out.
class Timeline {
 public:
  // rate: of the sound, in hertz.
  explicit Timeline(int rate);

  // Begins another run, which starts with its first keyframe.
  void beginRun();

  // The time of a picture, later than the previous one. Nothing before the run's first keyframe.
  std::optional<std::int64_t> video(std::int64_t milliseconds, bool key);

  // The time of an AAC frame, later than the previous one. Nothing before the run's first keyframe, or for earlier
  // sound.
  std::optional<std::int64_t> audio(std::int64_t milliseconds);

  // Where a picture of that time belongs, whether it was placed or not. Nothing for one before the run's first
  // keyframe, and for one as far from the newest as only a clock that was set can be.
  std::optional<std::int64_t> pictureAt(std::int64_t milliseconds) const;

  // Whether the newest time of that track is the first behind a break: of another run, or of a clock that was set.
  // Asked once for each time.
  bool takeBreak(Track track) { return std::exchange(track == Track::video ? videoBroke_ : audioBroke_, false); }

  // Whether the run's first keyframe has arrived.
  bool hasBegun() const { return shift_.has_value(); }

  std::optional<std::int64_t> newestVideo() const { return newestVideo_; }
  std::optional<std::int64_t> newestAudio() const { return newestAudio_; }

 private:
  std::optional<std::int64_t> placed(std::int64_t milliseconds, std::optional<std::int64_t> newest);
  std::int64_t frameLength(std::int64_t count) const;

  const int rate_;
  std::optional<std::int64_t> shift_;  // from the source's time to ours; none before the run's first keyframe
  std::int64_t begin_ = 0;             // of the run's first keyframe, in our time
  std::optional<std::int64_t> newestVideo_, newestAudio_;
  std::int64_t videoStep_ = 0;
  bool videoBroke_ = false, audioBroke_ = false;
  // Continuous sound: its first frame's time, and the number of frames since.
  std::int64_t soundBegin_ = 0, soundFrames_ = 0;
};

}  // namespace zel

#pragma once

#include <cstdint>
#include <optional>

namespace zel::app {

// Makes one line of time out of a source's runs, for all outputs: it begins with the first key picture, goes on where
// the run before ended, and never goes backwards on either track. Sound that comes at the camera's pace gets times
// that are exact to the sample.
// Units:  milliseconds in, microseconds out.
class Timeline {
 public:
  // rate: of the sound, in hertz.
  explicit Timeline(int rate);

  // The times that follow are another run's, which begins with its first key picture.
  void beginRun();

  // The time of a picture, later than the one before. Nothing for what comes before the run's first key picture.
  std::optional<std::int64_t> video(std::int64_t milliseconds, bool key);

  // The time of an AAC frame, likewise. Nothing before the run's first key picture, or for what sounds before it.
  std::optional<std::int64_t> audio(std::int64_t milliseconds);

  // The run's first key picture has come.
  bool hasBegun() const { return shift_.has_value(); }

  std::optional<std::int64_t> newestVideo() const { return newestVideo_; }
  std::optional<std::int64_t> newestAudio() const { return newestAudio_; }

 private:
  std::optional<std::int64_t> placed(std::int64_t milliseconds, std::optional<std::int64_t> newest);
  std::int64_t frameLength(std::int64_t count) const;

  const int rate_;
  std::optional<std::int64_t> shift_;  // from a time that came to ours; none before the run's first key picture
  std::int64_t begin_ = 0;             // ours, of the run's first key picture
  std::optional<std::int64_t> newestVideo_, newestAudio_;
  std::int64_t videoStep_ = 0;
  // Sound without a break: its first frame's time, and how many frames came since.
  std::int64_t soundBegin_ = 0, soundFrames_ = 0;
};

}  // namespace zel::app

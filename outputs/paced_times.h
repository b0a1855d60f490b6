#pragma once

#include <algorithm>
#include <optional>

namespace zel {

// A timeline for a camera without timestamps: sound advances by its samples, pictures by their rate, corrected towards
// the sound that arrives with them.
// Units:  milliseconds.
// Thread: one.
class PacedTimes {
 public:
  explicit PacedTimes(double picturesPerSecond) : step_(1000 / picturesPerSecond) {}

  void setSoundRate(double hertz) { frame_ = kSamples * 1000 / hertz; }

  // The time of the next frame of sound. first: the begin of the timeline.
  double sound(double first) {
    sound_ = sound_ ? *sound_ + frame_ : first;
    if (picture_ && *picture_ - *sound_ > kApart) sound_ = picture_;  // there was no sound for a while
    return *sound_;
  }

  // The time of data that arrives now: between the newest sound and the next. Nothing before the first sound.
  std::optional<double> now() const {
    if (!sound_) return std::nullopt;
    return *sound_ + frame_ / 2;
  }

  // The time of the next picture, whose first bytes arrived at `came`. A single arrival is only as exact as the length
  // of an audio frame; the mean of many evenly spaced pictures is more exact.
  double picture(double came) {
    const double next = picture_ ? *picture_ + step_ : came;
    const double behind = came - next;
    weight_ = std::min(weight_ + 1, kMostWeight);
    if (behind > kApart) {
      picture_ = came;  // pictures are missing
    } else if (behind < -kApart) {
      picture_ = next;  // sound is missing
    } else {
      picture_ = next + behind / weight_;
    }
    return *picture_;
  }

 private:
  static constexpr double kSamples = 1024;  // in a frame
  static constexpr double kApart = 300;
  static constexpr double kMostWeight = 8;

  const double step_;
  double frame_ = kSamples * 1000 / 48000;
  std::optional<double> sound_, picture_;
  double weight_ = 0;  // number of pictures in the mean
};

}  // namespace zel

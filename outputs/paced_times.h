#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>

namespace zel {

// A line of time for a camera that tells none: sound runs by its samples, pictures by their rate and drawn to the sound
// beside which they come.
// Units:  milliseconds.
// Thread: one.
class PacedTimes {
 public:
  explicit PacedTimes(double picturesPerSecond) : step_(1000 / picturesPerSecond) {}

  void setSoundRate(double hertz) { frame_ = kSamples * 1000 / hertz; }

  // The next frame of sound. first: where the line begins.
  double sound(double first) {
    sound_ = sound_ ? *sound_ + frame_ : first;
    if (picture_ && *picture_ - *sound_ > kApart) sound_ = picture_;  // there was none for a while
    return *sound_;
  }

  // Where on the line that stands which comes now: between the newest sound and the next. Nothing before the first.
  std::optional<double> now() const {
    if (!sound_) return std::nullopt;
    return *sound_ + frame_ / 2;
  }

  // The next picture, whose first bytes came then. A single one is known no better than a frame of sound is long; many
  // of them, which come evenly, are.
  double picture(double came) {
    const double next = picture_ ? *picture_ + step_ : came;
    const double behind = came - next;
    weight_ = std::min(weight_ + 1, kMostWeight);
    if (behind > kApart) {
      picture_ = came;  // pictures are missing
    } else if (behind < -kApart) {
      picture_ = next;  // sound is
    } else {
      picture_ = next + behind / weight_;
    }
    return *picture_;
  }

 private:
  static constexpr double kSamples = 1024;  // of a frame
  static constexpr double kApart = 300;
  static constexpr double kMostWeight = 8;

  const double step_;
  double frame_ = kSamples * 1000 / 48000;
  std::optional<double> sound_, picture_;
  double weight_ = 0;  // pictures that the newest one is the mean of
};

}  // namespace zel

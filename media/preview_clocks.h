#pragma once

#include <algorithm>
#include <cstdint>

namespace zel {

// Presentation times of the next picture and the next audio frame. A camera from firmware 190 on sets them. For an
// older one they advance with the frames, and once a second of audio the earlier one is set to the later one.
// Units:  milliseconds; a sum beyond 64 bits wraps.
// Thread: one.
struct PreviewClocks {
  std::int64_t video = 0;
  std::int64_t audio = 0;  // 0: stopped
  std::int32_t fps = 30;
  bool parameterSetsSent = false;  // the delegate has them, so audio may start

  // An older camera sent a slice. Deliberate: a picture of several slices counts several times.
  void advanceVideo() {
    if (fps != 0) video = sum(video, 1000 / fps);
  }

  // An older camera sent an audio frame.
  void advanceAudio() {
    if (audio == 0 && parameterSetsSent) synchronise();
    if (audio == 0) return;
    audio = sum(audio, kAudioFrame);
    if (audio > lastReset_ && difference(audio, lastReset_) >= kResynchronisation) synchronise();
  }

  void synchronise() { video = audio = lastReset_ = std::max(audio, video); }

  // A new delegate: the audio clock stops until the delegate has the parameter sets.
  void restartAudio() {
    audio = 0;
    parameterSetsSent = false;
  }

 private:
  static constexpr std::int64_t kAudioFrame = 21;  // 1024 samples at 48 kHz, rounded down
  static constexpr std::uint64_t kResynchronisation = 1000;

  static std::int64_t sum(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
  }
  static std::uint64_t difference(std::int64_t larger, std::int64_t smaller) {
    return static_cast<std::uint64_t>(larger) - static_cast<std::uint64_t>(smaller);
  }

  std::int64_t lastReset_ = 0;
};

}  // namespace zel

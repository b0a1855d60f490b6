#pragma once

#include "simulator/media/adts.h"

namespace zel::simulator {

inline constexpr double kLoopSeconds = 8;  // the period of the moving disc, and a whole number of audio frames
inline constexpr double kBeepSeconds = 0.1;
inline constexpr double kBeepHertz = 1000;

// The sample of one channel, -1 to 1: a beep at the beginning of each second, while the lamps in the picture are on,
// and a quiet hum otherwise. The right channel's beep is an octave above the left one's.
double beepSample(double seconds, bool right);

// kLoopSeconds of it in AAC-LC, 48 kHz, stereo. Frame n begins at n * 1024 / 48000, and the last one continues into the
// first one without a click.
// Errors: no frames if FFmpeg has no AAC encoder.
AudioTrack makeBeeps();

}  // namespace zel::simulator

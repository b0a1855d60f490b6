#include "simulator/media/beep.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/simulator/media/decoding.h"

namespace zel::simulator {
namespace {

TEST(BeepTest, SoundsWhileTheLampsAreLit) {
  EXPECT_NEAR(beepSample(0.05025, false), 0.5, 0.03);  // a quarter of a period of 1000 Hz after 50 whole ones
  EXPECT_NEAR(beepSample(7.05025, false), 0.5, 0.03);
  EXPECT_NEAR(beepSample(0.050125, true), 0.5, 0.03);  // 2000 Hz
  EXPECT_NEAR(beepSample(0.15025, false), 0, 0.021);   // the hum alone
  EXPECT_NEAR(beepSample(0.0, false), 0, 1e-9);
}

double loudness(const std::vector<float>& samples, std::size_t from, std::size_t count) {
  double squares = 0;
  for (std::size_t i = from; i < from + count; ++i) squares += double{samples[i]} * double{samples[i]};
  return std::sqrt(squares / static_cast<double>(count));
}

TEST(BeepTest, IsEncodedInStepWithTheClock) {
  const AudioTrack track = makeBeeps();
  ASSERT_EQ(track.frames.size(), 375u);  // 8 s of 48 kHz in frames of 1024
  EXPECT_EQ(track.sampleRate, 48000);
  const auto samples = decodeSound(track.frames);
  ASSERT_EQ(samples.size(), 384000u);
  for (std::size_t second = 1; second < 8; ++second) {
    const std::size_t begin = 48000 * second;
    EXPECT_LT(loudness(samples, begin - 960, 720), 0.03) << second;            // 20 to 5 ms before
    EXPECT_NEAR(loudness(samples, begin + 240, 4320), 0.354, 0.03) << second;  // a sine of 0.5
    EXPECT_LT(loudness(samples, begin + 5040, 720), 0.03) << second;           // 5 to 20 ms after
  }
}

TEST(BeepTest, GoesRoundWithoutASeam) {
  const AudioTrack track = makeBeeps();
  std::vector<Bytes> twice = track.frames;
  twice.insert(twice.end(), track.frames.begin(), track.frames.begin() + 10);
  const auto samples = decodeSound(twice);
  for (std::size_t i = 0; i < 4800; ++i)  // the beep after the seam
    ASSERT_NEAR(double{samples[384000 + i]}, beepSample(static_cast<double>(i) / 48000, false), 0.08) << i;
}

}  // namespace
}  // namespace zel::simulator

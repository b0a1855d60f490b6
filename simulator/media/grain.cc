#include "simulator/media/grain.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace zel::simulator {
namespace {

constexpr double kDeviation = 3;  // of 255, like a small sensor indoors
constexpr std::size_t kNoise = std::size_t{1} << 18;

// A hash, so that neighbouring rows and pictures are uncorrelated.
std::uint64_t mixed(std::uint64_t picture, std::uint64_t row) {
  std::uint64_t x = (picture << 32) + row + 0x9E3779B97F4A7C15;
  x = (x ^ x >> 30) * 0xBF58476D1CE4E5B9;
  x = (x ^ x >> 27) * 0x94D049BB133111EB;
  return x ^ x >> 31;
}

}  // namespace

// The engine's numbers are the same on every platform, the library's normal distribution is not. The sum of twelve
// uniform numbers approximates it.
Grain::Grain() : noise_(kNoise) {
  std::mt19937 random;
  for (std::int8_t& value : noise_) {
    double sum = -6;
    for (int i = 0; i < 12; ++i) sum += static_cast<double>(random()) / 4294967296.0;
    value = static_cast<std::int8_t>(std::lround(kDeviation * sum));
  }
}

void Grain::add(std::uint64_t picture, std::uint64_t row, std::span<std::uint8_t> samples) const {
  const std::size_t size = std::min(samples.size(), kNoise);
  const std::int8_t* const noise = noise_.data() + mixed(picture, row) % (kNoise - size + 1);
  for (std::size_t i = 0; i < size; ++i)
    samples[i] = static_cast<std::uint8_t>(std::clamp(samples[i] + noise[i], 0, 255));
}

}  // namespace zel::simulator

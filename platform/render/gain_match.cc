#include "platform/render/gain_match.h"

#include <algorithm>
#include <cmath>

namespace zel::render {
namespace {

constexpr int kDirections = 1 << 15;  // spread evenly over the sphere; some 2,000 of them are seen by both lenses
constexpr double kRim = 1.0;          // degrees inside both rims
constexpr double kBand = 4.0;         // degrees between the distances from the rims
constexpr double kShareOfNewest = 1.0 / 8;
constexpr std::uint8_t kDarkest = 16, kBrightest = 235;  // values beyond are unreliable

// A spiral with the golden angle, from pole to pole.
Direction spread(int index) {
  constexpr double golden = 2.399963229728653;
  const double down = (2 * index + 1.0) / kDirections - 1, level = std::sqrt(1 - down * down);
  return {level * std::sin(golden * index), down, level * std::cos(golden * index)};
}

bool tells(std::uint8_t luma) { return luma >= kDarkest && luma <= kBrightest; }

std::uint16_t fixed(double gain) { return static_cast<std::uint16_t>(std::lround(gain * kUnityGain)); }

std::uint8_t valueAt(const SourcePlane& luma, int x, int y) {
  return luma.data[static_cast<std::size_t>(y) * static_cast<std::size_t>(luma.stride) + static_cast<std::size_t>(x)];
}

}  // namespace

GainMatch::GainMatch(const std::vector<LensView>& views, double fieldOfView, int width, int height) {
  if (views.size() < 2) return;
  const auto placeOf = [&](const Sight& sight) {
    return Place{static_cast<std::uint16_t>(std::clamp(sight.x, 0.0, width - 1.0)),
                 static_cast<std::uint16_t>(std::clamp(sight.y, 0.0, height - 1.0))};
  };
  for (int index = 0; index < kDirections; ++index) {
    const Sight first = views[0].sightOf(spread(index)), second = views[1].sightOf(spread(index));
    if (std::max(first.angle, second.angle) > fieldOfView / 2 - kRim) continue;
    if (std::abs(first.angle - second.angle) > kBand) continue;
    samples_.push_back({placeOf(first), placeOf(second)});
  }
  samples_.shrink_to_fit();
}

LensGains GainMatch::next(const SourcePlane& luma) {
  std::uint64_t first = 0, second = 0;
  std::size_t count = 0;
  for (const Sample& sample : samples_) {
    const std::uint8_t one = valueAt(luma, sample.first.x, sample.first.y);
    const std::uint8_t other = valueAt(luma, sample.second.x, sample.second.y);
    if (!tells(one) || !tells(other)) continue;
    first += one;
    second += other;
    ++count;
  }
  if (count > samples_.size() / 16) {
    const double ratio = static_cast<double>(first) / static_cast<double>(second);
    const double log = std::log(std::clamp(ratio, 1 / kStrongest, kStrongest));
    logRatio_ += (log - logRatio_) * (measured_ ? kShareOfNewest : 1);
    measured_ = true;
  }
  return {{fixed(std::exp(-logRatio_ / 2)), fixed(std::exp(logRatio_ / 2))}};
}

}  // namespace zel::render

#include "simulator/fisheye.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace zel::simulator {
namespace {

std::uint32_t pixelAt(const Picture& scene, int x, int y) {
  const std::uint8_t* rgb = scene.rgb.data() + indexOf(scene, x, y);
  return std::uint32_t{rgb[0]} | std::uint32_t{rgb[1]} << 8 | std::uint32_t{rgb[2]} << 16;
}

// One word a pixel, for some rows. The first column is repeated after the last, and the last row after itself, so that
// every pixel has a neighbour to the right and below.
std::vector<std::uint32_t> continued(const Picture& scene, FisheyeProjector::Rows rows) {
  std::vector<std::uint32_t> words;
  words.reserve(static_cast<std::size_t>(scene.width + 1) * static_cast<std::size_t>(rows.end - rows.first));
  for (int row = rows.first; row < rows.end; ++row) {
    const int y = std::min(row, scene.height - 1);
    for (int x = 0; x < scene.width; ++x) words.push_back(pixelAt(scene, x, y));
    words.push_back(pixelAt(scene, 0, y));
  }
  return words;
}

// Red, blue and green in 16 bits each: sums of shares of 256 do not overflow into the next one.
std::uint64_t lanes(std::uint32_t word) {
  return (word & 0x00FF00FFu) | static_cast<std::uint64_t>(word & 0x0000FF00u) << 24;
}

constexpr std::uint64_t kRounding = 0x0000'0080'0080'0080;

std::uint64_t blend(const std::uint32_t* corner, std::size_t stride, std::uint32_t right, std::uint32_t down) {
  const std::uint32_t both = (right * down + 128) >> 8;
  return (lanes(corner[0]) * (256 - right - down + both) + lanes(corner[1]) * (right - both) +
          lanes(corner[stride]) * (down - both) + lanes(corner[stride + 1]) * both + kRounding) >>
         8;
}

void store(std::uint8_t* rgb, std::uint64_t colour) {
  rgb[0] = static_cast<std::uint8_t>(colour);
  rgb[1] = static_cast<std::uint8_t>(colour >> 32);
  rgb[2] = static_cast<std::uint8_t>(colour >> 16);
}

std::optional<Direction> seenAt(const LensProjection (&lenses)[2], Point point) {
  const auto first = lenses[0].directionOf(point);
  return first ? first : lenses[1].directionOf(point);
}

}  // namespace

FisheyeProjector::FisheyeProjector(const LensOffset& offset, int outWidth, int outHeight, int sceneWidth,
                                   int sceneHeight)
    : outWidth_(outWidth), outHeight_(outHeight), sceneWidth_(sceneWidth), sceneHeight_(sceneHeight) {
  const LensProjection lenses[] = {{offset.lenses[0], offset.model}, {offset.lenses[1], offset.model}};
  taps_.reserve(static_cast<std::size_t>(outWidth) * static_cast<std::size_t>(outHeight));
  for (int y = 0; y < outHeight; ++y) {
    spanOfRow_.push_back(spans_.size());
    tapOfRow_.push_back(taps_.size());
    addRow(offset, lenses, y);
  }
  spanOfRow_.push_back(spans_.size());
  tapOfRow_.push_back(taps_.size());
  taps_.shrink_to_fit();
}

Picture FisheyeProjector::project(const Picture& scene) const {
  Picture out = blackPicture(outWidth_, outHeight_);
  renew(scene, {0, outHeight_}, out);
  return out;
}

FisheyeProjector::Rows FisheyeProjector::rowsShowing(Rows ofScene) const {
  const auto shows = [&](const Tap& tap) {  // a tap reads its row and the next one
    return sceneRowOf(tap) + 1 >= ofScene.first && sceneRowOf(tap) < ofScene.end;
  };
  Rows rows;
  for (int y = 0; y < outHeight_; ++y) {
    const auto row = static_cast<std::size_t>(y);
    if (!std::any_of(taps_.begin() + static_cast<std::ptrdiff_t>(tapOfRow_[row]),
                     taps_.begin() + static_cast<std::ptrdiff_t>(tapOfRow_[row + 1]), shows))
      continue;
    if (rows.end == 0) rows.first = y;
    rows.end = y + 1;
  }
  return rows;
}

void FisheyeProjector::renew(const Picture& scene, Rows rows, Picture& out) const {
  const bool fits = scene.width == sceneWidth_ && scene.height == sceneHeight_ && out.width == outWidth_ &&
                    out.height == outHeight_ && 0 <= rows.first && rows.first < rows.end && rows.end <= outHeight_;
  if (!fits) return;
  const auto first = static_cast<std::size_t>(rows.first), end = static_cast<std::size_t>(rows.end);
  const Tap *tap = taps_.data() + tapOfRow_[first], *last = taps_.data() + tapOfRow_[end];
  if (tap == last) return;
  const auto [lowest, highest] = std::minmax_element(tap, last, [](auto& a, auto& b) { return a.corner < b.corner; });
  const Rows read{sceneRowOf(*lowest), sceneRowOf(*highest) + 2};
  const std::vector<std::uint32_t> words = continued(scene, read);
  const std::size_t stride = static_cast<std::size_t>(sceneWidth_) + 1;
  const std::size_t left = stride * static_cast<std::size_t>(read.first);
  for (std::size_t i = spanOfRow_[first]; i < spanOfRow_[end]; ++i) {
    std::uint8_t* rgb = out.rgb.data() + 3 * spans_[i].pixel;
    for (const Tap* spanEnd = tap + spans_[i].count; tap != spanEnd; ++tap, rgb += 3)
      store(rgb, blend(words.data() + (tap->corner - left), stride, tap->right, tap->down));
  }
}

void FisheyeProjector::addRow(const LensOffset& offset, const LensProjection (&lenses)[2], int y) {
  const double scaleX = static_cast<double>(offset.width) / outWidth_;
  const double scaleY = static_cast<double>(offset.height) / outHeight_;
  const std::size_t row = static_cast<std::size_t>(y) * static_cast<std::size_t>(outWidth_);
  bool inside = false;
  for (int x = 0; x < outWidth_; ++x) {
    const auto direction = seenAt(lenses, {(x + 0.5) * scaleX, (y + 0.5) * scaleY});
    if (direction && !inside) spans_.push_back({row + static_cast<std::size_t>(x), 0});
    inside = direction.has_value();
    if (!inside) continue;
    ++spans_.back().count;
    taps_.push_back(tapAt(*direction));
  }
}

FisheyeProjector::Tap FisheyeProjector::tapAt(Direction direction) const {
  const Point at = equirectangularPoint(direction, sceneWidth_, sceneHeight_);
  // Left of the first column's centre, the last column is the neighbour.
  const double x = at.x < 0.5 ? at.x - 0.5 + sceneWidth_ : at.x - 0.5;
  const double y = std::clamp(at.y - 0.5, 0.0, sceneHeight_ - 1.0);
  const double column = std::min(std::floor(x), sceneWidth_ - 1.0), row = std::floor(y);
  return {static_cast<std::uint32_t>(row * (sceneWidth_ + 1) + column),
          static_cast<std::uint16_t>(std::lround((x - column) * 256)),
          static_cast<std::uint16_t>(std::lround((y - row) * 256))};
}

}  // namespace zel::simulator

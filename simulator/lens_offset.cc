#include "simulator/lens_offset.h"

#include <cmath>

namespace zel::simulator {
namespace {

constexpr std::uint8_t kLensCount = 2;

void putLens(Bytes& into, const Lens& lens) {
  for (const double value : {lens.radius, lens.centreX, lens.centreY, lens.yaw, lens.pitch, lens.roll})
    put(into, static_cast<std::uint32_t>(std::llround(value * 1000)));  // thousandths
  put(into, std::uint64_t{0});
}

// Rotates both by an angle in their plane, from the first towards the second.
void turn(Direction& first, Direction& second, double degrees) {
  const double c = std::cos(degrees * kRadians), s = std::sin(degrees * kRadians);
  const Direction a = first, b = second;
  first = {a.x * c + b.x * s, a.y * c + b.y * s, a.z * c + b.z * s};
  second = {b.x * c - a.x * s, b.y * c - a.y * s, b.z * c - a.z * s};
}

}  // namespace

double fieldOfView(std::uint32_t model) { return model == kEquidistant195 ? 195 : 200; }

LensOffset factoryLensOffset() {
  return {.width = 3040,
          .height = 1520,
          .model = kEquidistant195,
          .lenses = {{
              {.radius = 750, .centreX = 760, .centreY = 760, .yaw = 0, .pitch = 0.3, .roll = -0.4},
              {.radius = 750, .centreX = 2280, .centreY = 760, .yaw = 179.8, .pitch = -0.2, .roll = 0.5},
          }}};
}

// |  0 | u16 | valueA: width                                  |
// |  2 | u16 | valueB: height                                 |
// |  4 | u32 | valueC: model                                  |
// |  8 | u8  | lens count                                     |
// |  9 |     | seven zeros                                    |
// | 16 | s32 | lens 0: p0 to p5 in thousandths, two zeros     |
// | 48 | s32 | lens 1: as lens 0                              |
Bytes lensOffsetRecord(const LensOffset& offset) {
  Bytes record = packed(offset.width, offset.height, offset.model, kLensCount);
  record.resize(16);
  for (const Lens& lens : offset.lenses) putLens(record, lens);
  return record;
}

LensProjection::LensProjection(const Lens& lens, std::uint32_t model)
    : lens_(lens),
      degreesPerPixel_(fieldOfView(model) / 2 / lens.radius),
      axes_{Direction{1, 0, 0}, Direction{0, 1, 0}, Direction{0, 0, 1}} {
  auto& [right, down, axis] = axes_;
  turn(axis, right, lens.yaw);
  turn(down, axis, lens.pitch);
  turn(right, down, lens.roll);
}

std::optional<Direction> LensProjection::directionOf(Point point) const {
  const double x = point.x - lens_.centreX, y = point.y - lens_.centreY;
  const double distance = std::sqrt(x * x + y * y);  // std::hypot is slow, and this is called for every pixel
  if (lens_.radius <= 0 || distance > lens_.radius) return std::nullopt;
  const double theta = distance > 0 ? distance * degreesPerPixel_ * kRadians : 0;
  const double aside = distance > 0 ? std::sin(theta) / distance : 0, ahead = std::cos(theta);
  const auto& [right, down, axis] = axes_;
  return Direction{right.x * x * aside + down.x * y * aside + axis.x * ahead,
                   right.y * x * aside + down.y * y * aside + axis.y * ahead,
                   right.z * x * aside + down.z * y * aside + axis.z * ahead};
}

}  // namespace zel::simulator

#pragma once

#include <cmath>
#include <cstdint>

#include "simulator/lens_offset.h"

namespace zel::simulator {

// Where a lens shows a direction: the other way round than LensProjection, whose axes it finds at the points that lie
// in their directions.
inline Point pointOf(const Lens& lens, std::uint32_t model, Direction world) {
  const LensProjection projection(lens, model);
  const double pixelsPerDegree = lens.radius / (fieldOfView(model) / 2);
  const auto along = [&](double right, double down) {
    const auto axis = projection.directionOf({lens.centreX + right, lens.centreY + down}).value();
    return world.x * axis.x + world.y * axis.y + world.z * axis.z;
  };
  const double x = along(90 * pixelsPerDegree, 0), y = along(0, 90 * pixelsPerDegree), z = along(0, 0);
  const double aside = std::hypot(x, y);
  if (aside == 0) return {lens.centreX, lens.centreY};
  const double distance = std::atan2(aside, z) / kRadians * pixelsPerDegree;
  return {lens.centreX + distance * x / aside, lens.centreY + distance * y / aside};
}

}  // namespace zel::simulator

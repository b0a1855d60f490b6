#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zel::simulator {

// A direction from the camera, of length 1. World axes: x right, y down, z forward.
struct Direction {
  double x = 0, y = 0, z = 1;
};

// A point on a picture in pixels; the centre of the top left pixel is (0.5, 0.5).
struct Point {
  double x = 0, y = 0;
};

inline constexpr double kRadians = std::numbers::pi / 180;  // in a degree

// Longitude 0 is forward and 90 right; latitude 90 is up.
// Units:  degrees.
inline Direction directionAt(double longitude, double latitude) {
  const double level = std::cos(latitude * kRadians);
  return {std::sin(longitude * kRadians) * level, -std::sin(latitude * kRadians),
          std::cos(longitude * kRadians) * level};
}

inline double longitudeOf(Direction to) { return std::atan2(to.x, to.z) / kRadians; }  // -180 to 180

inline double latitudeOf(Direction to) { return std::asin(std::clamp(-to.y, -1.0, 1.0)) / kRadians; }

// The point of a direction on an equirectangular picture. The middle is forward, the left and right edges are backward,
// the top is up:
//   x = width * (longitude / 360 + 1/2)        y = height * (1/2 - latitude / 180)
inline Point equirectangularPoint(Direction to, int width, int height) {
  return {width * (longitudeOf(to) / 360 + 0.5), height * (0.5 - latitudeOf(to) / 180)};
}

}  // namespace zel::simulator

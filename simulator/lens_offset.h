#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "simulator/sphere.h"
#include "simulator/wire.h"

namespace zel::simulator {

// One lens of the camera.
// Units:  pixels of the picture that LensOffset names; degrees.
struct Lens {
  double radius = 0;                    // p0: of the image circle
  double centreX = 0, centreY = 0;      // p1, p2: of the image circle
  double yaw = 0, pitch = 0, roll = 0;  // p3, p4, p5
};

// The directions of both lenses and the positions of their circles on the picture.
struct LensOffset {
  std::uint16_t width = 0, height = 0;  // valueA, valueB: the picture that the pixels refer to
  std::uint32_t model = 0;              // valueC
  std::array<Lens, 2> lenses;
};

inline constexpr std::uint32_t kEquidistant195 = 7;  // every other model is equidistant with 200 degrees

double fieldOfView(std::uint32_t model);  // degrees

// The factory calibration of this camera: a 3040 x 1520 picture, and almost straight lenses.
LensOffset factoryLensOffset();

// The camera's record of it, 80 bytes.
Bytes lensOffsetRecord(const LensOffset& offset);

// The map between directions and one lens's circle.
//
// The lens starts with its own axes on the world's (x right, y down, z forward) and is turned by yaw about the
// vertical, positive to the right; then by pitch about its own x, positive up; then by roll about its own z, positive
// when its x turns towards its y, which is clockwise as seen along the axis. So the scene rotates anticlockwise on the
// picture. All three are right-handed about these axes; a direction d of the lens points to
//   Ry(yaw) Rx(pitch) Rz(roll) d
// in the world. With theta the angle between a direction and the lens's axis, the model is
//   distance from the centre = radius * theta / (field of view / 2)
// at the angle atan2(d.y, d.x), so that the picture's x and y are the lens's.
class LensProjection {
 public:
  LensProjection(const Lens& lens, std::uint32_t model);

  // Nothing outside the circle, or if the circle has no size.
  std::optional<Direction> directionOf(Point point) const;

 private:
  Lens lens_;
  double degreesPerPixel_;
  std::array<Direction, 3> axes_;  // the lens's x, y and z in the world
};

}  // namespace zel::simulator

#pragma once

#include <array>
#include <cstdint>
#include <numbers>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zel::render {

inline constexpr double kRadians = std::numbers::pi / 180;  // in a degree

// A direction from the camera, of length 1. World axes: x right, y down, z forward.
struct Direction {
  double x = 0, y = 0, z = 1;
};

// One lens.
// Units:  pixels of the picture that LensModel names; degrees.
struct Lens {
  double radius = 0;                    // of the image circle
  double centreX = 0, centreY = 0;      // of the image circle
  double yaw = 0, pitch = 0, roll = 0;  // see LensView
};

// The content of the offset text. All models are equidistant; only the field of view depends on the model number.
struct LensModel {
  int width = 0, height = 0;  // the picture that the pixels refer to
  double fieldOfView = 0;     // of each lens, in degrees, from rim to rim
  std::vector<Lens> lenses;   // 1 or 2
};

// A model, or one sentence that says what is wrong with the text.
struct ParsedLensModel {
  std::optional<LensModel> model;
  std::string fault;
};

// Reads "2_750.000_760.000_760.000_0.000_0.300_-0.400_750.000_2280.000_760.000_179.800_-0.200_0.500_3040_1520_7": the
// number of lenses; of each radius, centre x, centre y, yaw, pitch, roll; the picture's width and height; the model.
// Thread: any thread.
// Errors: strict. A field too many or too few, anything but a plain decimal number, and numbers that no camera has give
//         no model.
ParsedLensModel parseLensModel(std::string_view text);

double fieldOfView(std::uint32_t modelNumber);  // degrees

// The position of a direction on a lens's picture, and its angle from the lens's axis.
struct Sight {
  double x = 0, y = 0;  // pixels of the stream; the middle of the top left pixel is (0.5, 0.5)
  double angle = 0;     // degrees, 0 to 180
};

// One lens on a stream's picture, scaled to its size.
//
// The lens starts with its own axes on the world's and is turned by yaw about the vertical, positive to the right; then
// by pitch about its own x, positive up; then by roll about its own z, positive when its x turns towards its y. So its
// direction d points to Ry(yaw) Rx(pitch) Rz(roll) d in the world. The picture's x and y are the lens's.
// Thread: any thread.
class LensView {
 public:
  LensView(const LensModel& model, const Lens& lens, int streamWidth, int streamHeight);

  // Also for directions outside the lens's view; their points lie outside the circle.
  Sight sightOf(const Direction& world) const;

  // Pixels of the stream for one degree from the centre outwards, in the direction with the most.
  double pixelsPerDegree() const { return scaleX_ > scaleY_ ? scaleX_ : scaleY_; }

 private:
  std::array<Direction, 3> axes_;  // the lens's x, y and z in the world
  double centreX_, centreY_;
  double scaleX_, scaleY_;  // pixels of the stream for a degree
};

}  // namespace zel::render

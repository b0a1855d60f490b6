#pragma once

#include <string>

#include "simulator/picture.h"

namespace zel::simulator {

// Where the scene's moving things are, for those who look for them in a picture.
// Units:  degrees, as in sphere.h.
inline constexpr double kClockLatitude = 10.5;  // both clocks: forward (longitude 0) and backward (180)
inline constexpr double kMovingLatitude = 14;   // nothing moves above it, nor as far below the horizon
inline constexpr double kLampAside = 24;        // how far to the right of each clock's middle its lamp is
inline constexpr double kLampHalfSide = 1.5;
inline constexpr double kDiscRadius = 4;      // bright; its middle is on the horizon
inline constexpr double kDiscRingRadius = 5;  // dark, around it

// Time of day that the clocks show, "HH:MM:SS.mmm"; after 24 hours they begin again. Parts of a millisecond are
// dropped, but for the last microsecond's rounding.
std::string clockText(double seconds);

// The disc's place: forward at 0 seconds, to the right, round once in 8 seconds. -180 to 180.
double discLongitude(double seconds);

// The lamps are lit for the first 100 ms of each second.
bool tickIsLit(double seconds);

// A world to point the camera at, as an equirectangular picture: sky and ground with a grid of 15 degrees, labels, and
// clocks, lamps and a disc that move. The same seconds give the same picture.
// Thread: any thread after construction, several at a time.
class Scene {
 public:
  // Sizes are at least 1; width is twice the height if degrees are to be square.
  Scene(int width, int height);

  // Errors: seconds that are no finite number count as 0.
  Picture at(double seconds) const;

 private:
  Picture still_;
};

}  // namespace zel::simulator

#pragma once

#include <string>

#include "simulator/picture.h"

namespace zel::simulator {

// The positions of the scene's moving objects, for tests that look for them in a picture.
// Units:  degrees, as in sphere.h.
inline constexpr double kClockLatitude = 10.5;  // both clocks: forward (longitude 0) and backward (180)
inline constexpr double kMovingLatitude = 14;   // nothing moves farther from the horizon, up or down
inline constexpr double kLampAside = 24;        // from each clock's centre to its lamp on the right
inline constexpr double kLampHalfSide = 1.5;
inline constexpr double kDiscRadius = 4;      // bright; its centre is on the horizon
inline constexpr double kDiscRingRadius = 5;  // dark, around it

// The time of the clocks, "HH:MM:SS.mmm", modulo 24 hours. Rounded to microseconds, then truncated to milliseconds.
std::string clockText(double seconds);

// The disc's longitude: forward at 0 seconds, moving to the right, one turn in 8 seconds. -180 to 180.
double discLongitude(double seconds);

// The lamps are on for the first 100 ms of each second.
bool tickIsLit(double seconds);

// The scene as an equirectangular picture: sky and ground with a grid of 15 degrees, labels, and moving clocks, lamps
// and a disc. The same seconds give the same picture.
// Thread: any thread after construction, several at a time.
class Scene {
 public:
  // Sizes are at least 1; width is twice the height if degrees are to be square.
  Scene(int width, int height);

  // Errors: seconds that are not finite count as 0.
  Picture at(double seconds) const;

 private:
  Picture still_;
};

}  // namespace zel::simulator

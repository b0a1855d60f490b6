#pragma once

#include <string>
#include <vector>

namespace zel::test {

// When the scene's lamp is seen to be lit, and its beep is heard to begin, in a film, and how red the newest picture is
// at the nadir of a stitched one.
// Units:  seconds; Cr, 128 for grey.
struct TicksAndBeeps {
  std::vector<double> ticks, beeps;
  double nadirCr = 0;
};

// Where the lamp is.
// Units:  shares of the picture's width and height.
struct LampPlace {
  double x = 0, y = 0;
};
LampPlace lampInPanorama();
LampPlace lampInFisheyes();

// By how much each beep is heard after its lamp was seen, the least first. A lamp whose picture was dropped does not
// count, and neither does the first second, in which the host may still be comparing its clock with the camera's.
// Units: milliseconds.
std::vector<double> delaysOf(const TicksAndBeeps& found);

// Decodes the whole film. A lamp counts where the picture before shows it dark and is the one before it at that many
// pictures a second.
TicksAndBeeps ticksAndBeepsIn(const std::string& film, LampPlace lamp = lampInPanorama(), int picturesPerSecond = 30);

}  // namespace zel::test

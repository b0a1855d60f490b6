#pragma once

#include <string>
#include <vector>

namespace zel::test {

// When the scene's lamp is seen to be lit, and its beep is heard to begin, in a stitched film, and how red the newest
// picture is at the nadir. Units: seconds; Cr, 128 for grey.
struct TicksAndBeeps {
  std::vector<double> ticks, beeps;
  double nadirCr = 0;
};

// Decodes the whole film. A lamp counts where the picture before shows it dark and is no more than 40 ms away.
TicksAndBeeps ticksAndBeepsIn(const std::string& film);

}  // namespace zel::test

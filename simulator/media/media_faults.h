#pragma once

#include <cstdint>

namespace zel::simulator {

// What goes wrong with the media on purpose. Shares are from 0, never, to 1, always.
struct MediaFaults {
  double corruptUnits = 0;       // share of the slices in which bits are flipped
  double lostKeyFrames = 0;      // share of the key pictures that are not sent
  int missingParameterSets = 0;  // so many key pictures, from the first one on, come without their parameter sets
  bool splitAnywhere = false;    // a picture comes as several video frames, cut at any byte
  int burst = 0;                 // so many pictures are held back and then sent at once

  bool operator==(const MediaFaults&) const = default;
};

}  // namespace zel::simulator

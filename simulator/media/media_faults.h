#pragma once

namespace zel::simulator {

// Injected faults of the media. Shares are from 0, never, to 1, always.
struct MediaFaults {
  double corruptUnits = 0;       // share of the slices in which bits are flipped
  double lostKeyFrames = 0;      // share of the key pictures that are not sent
  int missingParameterSets = 0;  // this many keyframes, from the first on, are sent without parameter sets
  bool splitAnywhere = false;    // a picture is sent in several video frames, cut at any byte
  int burst = 0;                 // this many pictures are held back and then sent at once

  bool operator==(const MediaFaults&) const = default;
};

}  // namespace zel::simulator

#pragma once

#include <optional>
#include <string>

namespace zel {

// The XMP packet that identifies a full equirectangular picture of that size for viewers. heading: the direction of its
// centre, if known. Pitch and roll are left out, because the camera does not send them.
// Units:  pixels; degrees from true north by east.
// Thread: one at a time.
// Errors: nothing if the packet cannot be made.
std::optional<std::string> panoramaPacket(int width, int height, std::optional<double> heading);

}  // namespace zel

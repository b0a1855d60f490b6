#pragma once

#include <optional>
#include <string>

namespace zel {

// The XMP packet by which viewers know a whole equirectangular picture of that size. heading: where its centre looks,
// where that is known. How it was tilted is not in it: neither the camera nor its pictures tell.
// Units:  pixels; degrees from true north by east.
// Thread: one at a time.
// Errors: nothing where the packet cannot be made.
std::optional<std::string> panoramaPacket(int width, int height, std::optional<double> heading);

}  // namespace zel

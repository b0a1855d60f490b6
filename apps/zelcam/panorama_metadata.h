#pragma once

#include <optional>
#include <string>

namespace zel::app {

// The XMP packet by which viewers know a whole equirectangular picture of that size. Where it was turned to is not in
// it: neither the camera nor its pictures tell.
// Units:  pixels.
// Thread: one at a time.
// Errors: nothing where the packet cannot be made.
std::optional<std::string> panoramaPacket(int width, int height);

}  // namespace zel::app

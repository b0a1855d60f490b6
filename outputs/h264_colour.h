#pragma once

#include <cstdint>
#include <span>

#include <ZELTarkaSDK/MediaPacket.h>

namespace zel {

// The colours that an SPS declares, with defaults for undeclared ones: limited range, BT.601, and the values that
// belong to the matrix. The decoder uses the same defaults, so that a file looks like a snapshot.
VideoColour colourOfPictures(std::span<const std::uint8_t> sps);

}  // namespace zel

#pragma once

#include <cstdint>
#include <span>

#include <ZELTarkaSDK/MediaPacket.h>

namespace zel {

// The colours that a sequence parameter set declares, completed where it leaves them untold: limited range, BT.601, and
// what goes with the matrix. That is how the decoder reads such a stream, so that a file shows what a snapshot does.
VideoColour colourOfPictures(std::span<const std::uint8_t> sps);

}  // namespace zel

#pragma once

#include <ZELTarkaSDK/zel_media.h>

#include <cstdint>

namespace zel::c {

// The camera's code of a preview format; NULL and zeros are the default.
//
// Errors: refused for one that the camera does not have.
std::uint8_t resolutionOf(const zel_format* format);

}  // namespace zel::c

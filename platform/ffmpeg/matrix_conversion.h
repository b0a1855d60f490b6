#pragma once

#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel::platform {

// The picture by another matrix: the same red, green and blue, but for rounding. One that has this matrix already comes
// back as it is. Primaries and transfer are left as they are.
// Errors: null for a picture that does not fit into memory.
PixelBufferRef inMatrix(const PixelBufferRef& picture, ColourMatrix matrix);

}  // namespace zel::platform

#pragma once

#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel::platform {

// The picture converted to another matrix: the same RGB values, except for rounding. A picture with this matrix is
// returned unchanged. Primaries and transfer are kept.
// Errors: null when memory runs out.
PixelBufferRef inMatrix(const PixelBufferRef& picture, ColourMatrix matrix);

}  // namespace zel::platform

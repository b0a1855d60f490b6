#pragma once

#include "simulator/picture.h"
#include "simulator/wire.h"

namespace zel::simulator {

// A JPEG file with chroma of half the width and height. quality: 1 to 100; other values are clamped.
// Errors: no bytes for a picture without pixels, too large for JPEG, or whose rgb does not match its size.
Bytes encodeJpeg(const Picture& picture, int quality);

// The same view with 2^stops times the light. Values are clamped to white.
Picture exposed(const Picture& picture, double stops);

}  // namespace zel::simulator

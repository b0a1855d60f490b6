#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "simulator/picture.h"
#include "simulator/wire.h"

namespace zel::simulator {

// A JPEG file with chroma of half the width and height. quality: 1 to 100; other values are clamped.
// Errors: no bytes for a picture without pixels, too large for JPEG, or whose rgb does not match its size.
Bytes encodeJpeg(const Picture& picture, int quality);

// Errors: nothing for bytes that are not a complete JPEG file, and for pictures of more than 100 megapixels. A flipped
//         bit in the image data may go unnoticed, as the format has no checksum.
std::optional<Picture> decodeJpeg(std::span<const std::uint8_t> file);

// The same view with 2^stops times the light. Values are clamped to white.
Picture exposed(const Picture& picture, double stops);

}  // namespace zel::simulator

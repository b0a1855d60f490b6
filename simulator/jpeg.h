#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "simulator/picture.h"
#include "simulator/wire.h"

namespace zel::simulator {

// A JPEG file with chroma of half the width and height. quality: 1 to 100, nearer values are taken for others.
// Errors: no bytes for a picture without pixels, one larger than JPEG knows, or one whose rgb does not fit its size.
Bytes encodeJpeg(const Picture& picture, int quality);

// Errors: nothing for bytes that are no JPEG file or only a part of one, and for pictures of more than 100 megapixels.
//         A flipped bit among the picture's data may go unnoticed, as the format has no check sum.
std::optional<Picture> decodeJpeg(std::span<const std::uint8_t> file);

// The same view with 2^stops times the light. What is too bright for the picture becomes white.
Picture exposed(const Picture& picture, double stops);

}  // namespace zel::simulator

#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/pixel_buffer.h"

namespace zel::app {

// A picture as a PNG file's bytes: red, green and blue, 8 bits each, by the full-range matrix of ITU-R BT.601.
// Errors: nothing where the picture is too large for memory.
std::optional<std::vector<std::uint8_t>> pngOf(const platform::PixelBuffer& picture);

}  // namespace zel::app

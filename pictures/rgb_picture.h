#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

namespace zel {

// The picture's pixels as BGRA with opaque alpha, one byte each, in rows from the top without gaps: converted with its
// own matrix, rounded to nearest.
std::vector<std::uint8_t> bgraOf(const platform::PixelBuffer& picture);

// The inverse: fills a picture of that size with its own matrix. Chroma is computed from the mean of its pixels.
void setBgra(std::span<const std::uint8_t> pixels, platform::MemoryPixelBuffer& into);

}  // namespace zel

#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <ZELTarkaSDK/platform/memory_pixel_buffer.h>

namespace zel {

// The picture's pixels as blue, green, red and an opaque alpha, a byte each, in rows from the top without gaps: by its
// own matrix, each value the nearest one.
std::vector<std::uint8_t> bgraOf(const platform::PixelBuffer& picture);

// The other way: fills a picture of that size, by the matrix that it bears. Chroma is that of the mean of the pixels
// for which it stands.
void setBgra(std::span<const std::uint8_t> pixels, platform::MemoryPixelBuffer& into);

}  // namespace zel

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/media_library.h>
#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel::app {

// A picture as a PNG file's bytes: red, green and blue, 8 bits each, by the picture's own matrix.
// Errors: nothing if the picture is too large for memory.
std::optional<std::vector<std::uint8_t>> pngOf(const platform::PixelBuffer& picture);

// A PNG file's picture, whatever its colours are.
// Errors: nothing; `error` then names the file and the fault.
std::optional<platform::RgbaImage> readPng(const std::string& path, std::string& error);

}  // namespace zel::app

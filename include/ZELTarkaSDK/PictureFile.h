#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/platform/media_library.h>
#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel {

enum class PictureForm { png, jpeg };

// The form of a picture's file, by its extension: ".png", ".jpg" or ".jpeg".
//
// Errors: nothing for any other.
ZEL_EXPORT std::optional<PictureForm> pictureFormOf(const std::string& path);

// Writes a picture as the file of that path, in the form of its extension, and as PNG where it has another. A file
// that is there is replaced once the new one is whole.
//
// Errors: false; `error` then says what is wrong.
ZEL_EXPORT bool savePicture(const platform::PixelBuffer& picture, const std::string& path, std::string& error);

// The picture as a PNG file's bytes: red, green and blue, 8 bits each, by the picture's own matrix.
//
// Errors: nothing where the picture is too large for memory.
ZEL_EXPORT std::optional<std::vector<std::uint8_t>> pngOf(const platform::PixelBuffer& picture);

// The picture, of even sides, as a JPEG file's bytes. quality: 1 to 100.
//
// Errors: nothing where the picture is larger than the format or the memory knows.
ZEL_EXPORT std::optional<std::vector<std::uint8_t>> jpegOf(const platform::PixelBuffer& picture, int quality);

// The picture of a JPEG file.
//
// Errors: null; `error` then says what is wrong with the file.
ZEL_EXPORT platform::PixelBufferRef pictureOfJpeg(std::span<const std::uint8_t> file, std::string& error);

// The picture of a PNG file of at most 8192 x 8192 pixels, whatever its colours are, as a logo is given.
//
// Errors: nothing; `error` then says what the file is instead.
ZEL_EXPORT std::optional<platform::RgbaImage> imageOfPng(std::span<const std::uint8_t> file, std::string& error);

}  // namespace zel

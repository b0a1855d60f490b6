#pragma once

#include <optional>
#include <string>

#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel::app {

enum class PictureForm { png, jpeg };

// What a picture's file is, by its extension: ".png", ".jpg" or ".jpeg".
// Errors: nothing for any other.
std::optional<PictureForm> pictureFormOf(const std::string& path);

// Writes the picture as the file of that path, in the form of its extension; it is replaced when the new one is whole.
// Errors: false; `error` then says what is wrong.
bool savePicture(const platform::PixelBuffer& picture, const std::string& path, std::string& error);

}  // namespace zel::app

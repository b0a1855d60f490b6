#pragma once

#include <optional>
#include <string>

#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel::app {

enum class PictureForm { png, jpeg };

// The format of a picture's file, by its extension: ".png", ".jpg" or ".jpeg".
// Errors: nothing for any other.
std::optional<PictureForm> pictureFormOf(const std::string& path);

// Saves the picture at that path, in the format of its extension; an existing file is replaced once the new one is
// complete.
// Errors: false; `error` then says what is wrong.
bool savePicture(const platform::PixelBuffer& picture, const std::string& path, std::string& error);

}  // namespace zel::app

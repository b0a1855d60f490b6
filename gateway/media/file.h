#pragma once

#include <ZELTarkaSDK/ZELData.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zel::gateway {

// The bytes of a regular file of at most `most` bytes, since they are sent in one frame.
// Errors: nothing; `error` then names the file and the fault.
std::optional<ZELData> readFile(const std::string& path, std::string& error,
                                std::uint64_t most = std::numeric_limits<std::uint64_t>::max());

// The camera's name of a photo, reduced to a plain file name of a picture: the part after the last slash, without
// control characters and without leading dots, which would hide the file or name a file that shells run. ".jpg" is
// added unless it has a picture's extension. "photo.jpg" if nothing is left.
std::string photoFileName(std::string_view name);

// The name with a text between its stem and its extension, "IMG_1" "-2" ".jpg", of at most that many bytes: the stem is
// cut at a character boundary.
std::string fileNameWith(const std::string& name, std::string_view text, std::size_t most);

// What a panorama's name has at the end of its stem.
inline constexpr std::string_view kPanoramaMark = "-360";

// "IMG_1.jpg" becomes "IMG_1-360.jpg". A panorama is always a JPEG file.
std::string panoramaFileName(const std::string& photo);

// Checks that the folder is writable; creates it if missing.
// Errors: false; `error` then names the folder and the fault.
bool prepareFolder(const std::string& folder, std::string& error);

// Saves the bytes under that plain name in the folder, which is created if missing. The file appears under its name
// when it is complete; a name in use gets "-2", "-3" and so on before its extension, and one that is too long for the
// file system is cut. Returns the path.
// Errors: nothing; `error` then names the file and the fault.
std::optional<std::string> saveFile(const std::string& folder, const std::string& name,
                                    std::span<const std::uint8_t> bytes, std::string& error);

}  // namespace zel::gateway

#pragma once

#include <ZELTarkaSDK/ZELData.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zel::app {

// The bytes of a regular file that is not larger than `most`, since they go into one frame.
// Errors: nothing; `error` then names the file and the fault.
std::optional<ZELData> readFile(const std::string& path, std::string& error,
                                std::uint64_t most = std::numeric_limits<std::uint64_t>::max());

// A name that a camera gives its photo, reduced to the plain file name of a picture: what stands after its last slash,
// without what does not print and without dots in front, since files are hidden by them and shells run some of these.
// Without a picture's extension it gets ".jpg". "photo.jpg" where nothing is left.
std::string photoFileName(std::string_view name);

// The name with a text between its stem and its extension, "IMG_1" "-2" ".jpg", of at most so many bytes: the stem is
// cut where a letter ends.
std::string fileNameWith(const std::string& name, std::string_view text, std::size_t most);

// A folder that files can be written into, which is made where it is missing.
// Errors: false; `error` then names the folder and the fault.
bool prepareFolder(const std::string& folder, std::string& error);

// Writes the bytes as a file of that plain name into the folder, which is made where it is missing. The file appears
// under its name when it is whole; a name that is taken gets "-2", "-3" and so on before its extension, and one that is
// too long for the file system is cut. Returns the path.
// Errors: nothing; `error` then names the file and the fault.
std::optional<std::string> saveFile(const std::string& folder, const std::string& name,
                                    std::span<const std::uint8_t> bytes, std::string& error);

// Writes the bytes as the file of that path, which it replaces when it is whole. The folder must exist.
// Errors: false; `error` then names the file and the fault.
bool replaceFile(const std::string& path, std::span<const std::uint8_t> bytes, std::string& error);

}  // namespace zel::app

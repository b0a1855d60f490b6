#pragma once

#include <ZELTarkaSDK/ZELData.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zel::app {

// The bytes of a regular file. Errors: nothing; `error` then names the file and the fault.
std::optional<ZELData> readFile(const std::string& path, std::string& error);

// A name from outside reduced to a plain file name: what stands after its last slash, without control characters, and
// `otherwise` where nothing is left or the rest means a folder.
std::string plainFileName(std::string_view name, std::string_view otherwise);

// A folder that files can be written into, which is made where it is missing.
// Errors: false; `error` then names the folder and the fault.
bool prepareFolder(const std::string& folder, std::string& error);

// Writes the bytes as a file of that plain name into the folder, which is made where it is missing. The file appears
// under its name when it is whole; a name that is taken gets "-2", "-3" and so on before its extension.
// Returns the path. Errors: nothing; `error` then names the file and the fault.
std::optional<std::string> saveFile(const std::string& folder, const std::string& name,
                                    std::span<const std::uint8_t> bytes, std::string& error);

// Writes the bytes as the file of that path, which it replaces when it is whole. The folder must exist.
// Errors: false; `error` then names the file and the fault.
bool replaceFile(const std::string& path, std::span<const std::uint8_t> bytes, std::string& error);

}  // namespace zel::app

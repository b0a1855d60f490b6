#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace zel {

// Appends the bytes to the file. A file that cannot be opened, usually because it does not exist, is replaced by a new
// one that appears under its name when it is complete.
// Errors: none; bytes that cannot be written are lost, and no temporary file is left.
void appendToFile(const std::string& path, std::span<const std::uint8_t> bytes);

}  // namespace zel

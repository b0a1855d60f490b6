#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace zel {

// Appends the bytes to the file. One that cannot be opened, mostly because there is none yet, is replaced by a new one
// that appears whole under its name.
// Errors: none; what cannot be written is lost, and no file of another name is left behind.
void appendToFile(const std::string& path, std::span<const std::uint8_t> bytes);

}  // namespace zel

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/accessory.h"
#include "platform/linux/endpoint.h"

namespace zel::platform {

// No description is longer; a longer file is refused unread.
inline constexpr std::size_t kLongestDescription = 64 * 1024;

// An accessory's file, read.
struct ParsedAccessory {
  AccessoryDescription description;
  Endpoint endpoint;
};

// Reads the text of an accessory's file. Fields that are not known are ignored.
// Errors: nullopt, and what is wrong in `fault`.
std::optional<ParsedAccessory> parseAccessoryDescription(std::string_view json, std::string& fault);

}  // namespace zel::platform

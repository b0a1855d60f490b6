#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <ZELTarkaSDK/platform/accessory.h>
#include "platform/linux/endpoint.h"

namespace zel::platform {

// What the file of an attached accessory says.
struct ParsedAccessory {
  AccessoryDescription description;
  Endpoint endpoint;
};

// The most that a file may hold.
inline constexpr std::size_t kLargestAccessoryFile = 64 * 1024;

// Reads the JSON of an accessory's file. Every field has to be there, with the right type; fields with other names are
// left to later versions and ignored.
// Errors: empty; `fault` names the field and what is wrong with it.
// Thread: any thread.
std::optional<ParsedAccessory> parseAccessoryDescription(std::string_view json, std::string& fault);

}  // namespace zel::platform

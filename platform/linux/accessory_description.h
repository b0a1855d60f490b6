#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <ZELTarkaSDK/platform/accessory.h>

#include "platform/linux/endpoint.h"

namespace zel::platform {

// The content of an accessory file.
struct ParsedAccessory {
  AccessoryDescription description;
  Endpoint endpoint;
};

// The largest file, in bytes.
inline constexpr std::size_t kLargestAccessoryFile = 64 * 1024;

// Reads the JSON of an accessory's file. Every field is required, with the right type; unknown fields are ignored, for
// later versions.
// Errors: empty; `fault` names the field and what is wrong with it.
// Thread: any thread.
std::optional<ParsedAccessory> parseAccessoryDescription(std::string_view json, std::string& fault);

}  // namespace zel::platform

#pragma once

#include <ZELTarkaSDK/ZELMessageFields.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace zel::gateway {

// An event of the camera: its type, its name, its values under the interface's own keys, and when it came. Values other
// than numbers, text and errors are null.
nlohmann::ordered_json eventJson(std::int64_t type, const std::optional<ZELMessageFields>& value,
                                 const std::string& timeOfDay);

}  // namespace zel::gateway

#pragma once

#include <ZELTarkaSDK/ZELError.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace zel::gateway {

// An object as one line. Text that is not UTF-8 is shown with replacement characters, and what could control a terminal
// as a JSON escape.
std::string jsonLine(const nlohmann::ordered_json& object);

// An error as an object with its domain and code, and no error as null.
nlohmann::ordered_json errorJson(const std::optional<ZELError>& error);

// The local time of day with milliseconds, "12:34:56.789".
std::string timeOfDay();

}  // namespace zel::gateway

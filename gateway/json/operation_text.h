#pragma once

#include <ZELTarkaSDK/Operations.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "gateway/json/sensors.h"

// Calls of operations as people type and read them.
namespace zel::gateway {

// The positional arguments of an operation, in its order: "type:u8".
std::vector<std::string> argumentsOf(const Operation& operation);

// The options that it reads.
std::vector<std::string_view> optionsOf(const Operation& operation);

// The arguments of a call, out of as many texts as argumentsOf() has and of the sensor options.
// Errors: nothing; `error` then names the argument and what it takes.
std::optional<std::vector<Operation::Value>> argumentsIn(const Operation& operation,
                                                         const std::vector<std::string>& texts, const Sensors& sensors,
                                                         std::string& error);

// A reply's values under their keys.
nlohmann::ordered_json resultJson(const Operation& operation, const std::vector<Operation::Value>& values);

// A call that was answered: the operation, its error or null, and its reply's values.
nlohmann::ordered_json callJson(const Operation& operation, const OperationReply& reply);

}  // namespace zel::gateway

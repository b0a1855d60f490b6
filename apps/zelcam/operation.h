#pragma once

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELError.h>

#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/zelcam/sensors.h"

namespace zel::app {

// The result of a call: its error and the reply's values by key.
using CallDone = std::function<void(const std::optional<ZELError>& error, nlohmann::ordered_json result)>;

// When a call is done.
enum class DoneWhen {
  answered,  // the handler is called
  written,   // there is no reply: its bytes are written
  called,    // the operation does nothing
};

// The input of a call: the positional arguments as typed, and the sensor options.
struct CallInput {
  std::span<const std::string> arguments;
  Sensors sensors;
};

// A parsed call.
using ReadyCall = std::function<void(CameraStack& stack, CallDone done)>;

// One public operation for `zelcam call`.
struct Operation {
  std::string_view name;                     // its C++ name
  std::vector<std::string> arguments;        // "type:u8": the positional ones, in the operation's order
  std::vector<std::string> sensors;          // the options that it reads
  std::vector<std::string_view> resultKeys;  // of the reply's values, in the handler's order
  DoneWhen doneWhen = DoneWhen::answered;
  bool valueWithError = false;  // a refusal has values too
  // Parses the input.
  // Errors: no call; `error` then names the argument and its allowed values.
  std::function<ReadyCall(const Operation& operation, const CallInput& input, std::string& error)> prepare;
};

// Every operation, by class and in the order of its header.
std::span<const Operation> operations();

// The operation of that name; null for an unknown name.
const Operation* findOperation(std::string_view name);

}  // namespace zel::app

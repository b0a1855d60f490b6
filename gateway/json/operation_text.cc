#include "gateway/json/operation_text.h"

#include <fmt/format.h>

#include <concepts>
#include <type_traits>
#include <utility>
#include <variant>

#include "gateway/json/hex.h"
#include "gateway/json/json_line.h"
#include "gateway/json/number_text.h"

namespace zel::gateway {
namespace {

using Value = ZELMessageFields::Value;

template <class T>
std::string typeName(const T&) {
  if constexpr (std::integral<T>) return fmt::format("{}{}", std::is_signed_v<T> ? 's' : 'u', 8 * sizeof(T));
  if constexpr (std::same_as<T, std::string>) return "text";
  if constexpr (std::same_as<T, ZELData>) return "hex";
  if constexpr (WireRecord<T>) return fmt::format("hex of {} bytes", sizeof(T));
  return {};
}

// The value that the text stands for, of the type of `as`.
template <class T>
std::optional<Value> valueIn(const T&, const std::string& text) {
  if constexpr (std::integral<T>) return numberIn<T>(text);
  if constexpr (std::same_as<T, std::string>) return text;
  if constexpr (std::same_as<T, ZELData>) {
    if (auto bytes = bytesIn(text)) return ZELData(std::move(*bytes));
  }
  if constexpr (WireRecord<T> && !std::integral<T>) return recordIn<T>(text);
  return std::nullopt;
}

template <class T>
nlohmann::ordered_json jsonOf(const T& value) {
  if constexpr (std::integral<T> || std::same_as<T, std::string>) return value;
  if constexpr (std::same_as<T, ZELData>) return hexOf(value.bytes());
  if constexpr (WireRecord<T> && !std::integral<T>) return recordHex(value);
  return {};
}

// The option that a parameter comes from, empty where it is typed as an argument.
std::string_view optionOf(const Operation::Parameter& parameter) {
  if (std::holds_alternative<ZELGpsData>(parameter.type)) return "--gps";
  if (std::holds_alternative<ZELGyroData>(parameter.type)) return "--gyro";
  if (std::holds_alternative<ZELOrientationData>(parameter.type)) return "--orientation";
  return parameter.name == "jsonData" ? "--extra" : "";
}

Operation::Value sensorValue(std::string_view option, const Sensors& sensors) {
  if (option == "--gps") return sensors.gps;
  if (option == "--gyro") return sensors.gyro;
  if (option == "--orientation") return sensors.orientation;
  return sensors.extra;
}

std::string typed(const Operation::Parameter& parameter) {
  return fmt::format("{}:{}", parameter.name,
                     std::visit([](const auto& type) { return typeName(type); }, parameter.type));
}

}  // namespace

std::vector<std::string> argumentsOf(const Operation& operation) {
  std::vector<std::string> arguments;
  for (const auto& parameter : operation.parameters) {
    if (optionOf(parameter).empty()) arguments.push_back(typed(parameter));
  }
  return arguments;
}

std::vector<std::string_view> optionsOf(const Operation& operation) {
  std::vector<std::string_view> options;
  for (const auto& parameter : operation.parameters) {
    if (!optionOf(parameter).empty()) options.push_back(optionOf(parameter));
  }
  return options;
}

std::optional<std::vector<Operation::Value>> argumentsIn(const Operation& operation,
                                                         const std::vector<std::string>& texts, const Sensors& sensors,
                                                         std::string& error) {
  std::vector<Operation::Value> values;
  auto text = texts.begin();
  for (const auto& parameter : operation.parameters) {
    if (const auto option = optionOf(parameter); !option.empty()) {
      values.push_back(sensorValue(option, sensors));
      continue;
    }
    values.push_back(std::visit([&](const auto& type) { return valueIn(type, *text); }, parameter.type));
    if (!values.back()) {
      error = fmt::format("{} takes {}, not \"{}\"", operation.name, typed(parameter), *text);
      return std::nullopt;
    }
    ++text;
  }
  return values;
}

nlohmann::ordered_json resultJson(const Operation& operation, const std::vector<Operation::Value>& values) {
  auto result = nlohmann::ordered_json::object();
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto& value = values[i];
    result[std::string(operation.resultKeys[i])] =
        value ? std::visit([](const auto& one) { return jsonOf(one); }, *value) : nlohmann::ordered_json();
  }
  return result;
}

nlohmann::ordered_json callJson(const Operation& operation, const OperationReply& reply) {
  return {{"operation", operation.name},
          {"error", errorJson(reply.error)},
          {"result", resultJson(operation, reply.values)}};
}

}  // namespace zel::gateway

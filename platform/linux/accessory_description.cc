#include "platform/linux/accessory_description.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace zel::platform {
namespace {

using nlohmann::json;

// Reads fields by name and keeps the first fault; what is read after a fault means nothing.
class FieldReader {
 public:
  FieldReader(const json& object, std::string prefix, std::string& fault)
      : object_(object), prefix_(std::move(prefix)), fault_(fault) {}

  std::string text(const char* name) {
    const json* field = find(name);
    if (field == nullptr) return {};
    if (!field->is_string()) return failed(name, "is no text");
    return field->get<std::string>();
  }

  // A text that opens, connects or names something, and so may be neither empty nor cut short by a zero byte.
  std::string usableText(const char* name) {
    std::string value = text(name);
    if (!fault_.empty()) return {};
    if (value.empty()) return failed(name, "is empty");
    if (value.find('\0') != std::string::npos) return failed(name, "holds a zero byte");
    return value;
  }

  std::uint64_t number(const char* name, std::uint64_t least, std::uint64_t most) {
    const json* field = find(name);
    if (field == nullptr) return 0;
    if (!field->is_number_unsigned() || field->get<std::uint64_t>() < least || field->get<std::uint64_t>() > most) {
      failed(name, ("is no whole number from " + std::to_string(least) + " to " + std::to_string(most)).c_str());
      return 0;
    }
    return field->get<std::uint64_t>();
  }

  std::vector<std::string> texts(const char* name) {
    std::vector<std::string> values;
    const json* field = find(name);
    if (field == nullptr) return values;
    if (!field->is_array()) failed(name, "is no list of texts");
    for (const json& item : *field) {
      if (!item.is_string()) {
        failed(name, "is no list of texts");
        return {};
      }
      values.push_back(item.get<std::string>());
    }
    return values;
  }

  const json* object(const char* name) {
    const json* field = find(name);
    if (field == nullptr) return nullptr;
    if (field->is_object()) return field;
    failed(name, "is no object");
    return nullptr;
  }

  std::string failed(const char* name, const char* what) {
    if (fault_.empty()) fault_ = "\"" + prefix_ + name + "\" " + what;
    return {};
  }

 private:
  const json* find(const char* name) {
    const auto found = object_.find(name);
    if (found != object_.end()) return &*found;
    failed(name, "is missing");
    return nullptr;
  }

  const json& object_;
  const std::string prefix_;
  std::string& fault_;
};

Endpoint readEndpoint(const json& object, std::string& fault) {
  FieldReader fields(object, "endpoint.", fault);
  const std::string type = fields.usableText("type");
  if (type == "unix") return UnixEndpoint{fields.usableText("path")};
  if (type == "device") return DeviceEndpoint{fields.usableText("path")};
  if (type == "tcp") {
    std::string host = fields.usableText("host");
    return TcpEndpoint{std::move(host), static_cast<std::uint16_t>(fields.number("port", 1, 65535))};
  }
  fields.failed("type", "is none of unix, tcp, device");
  return {};
}

ParsedAccessory readAccessory(const json& object, std::string& fault) {
  FieldReader fields(object, "", fault);
  ParsedAccessory parsed;
  AccessoryDescription& description = parsed.description;
  description.connectionID = fields.number("connectionID", 0, UINT64_MAX);
  description.manufacturer = fields.text("manufacturer");
  description.name = fields.text("name");
  description.modelNumber = fields.text("modelNumber");
  description.serialNumber = fields.text("serialNumber");
  description.firmwareRevision = fields.text("firmwareRevision");
  description.hardwareRevision = fields.text("hardwareRevision");
  description.protocolStrings = fields.texts("protocolStrings");
  description.dockType = fields.text("dockType");
  if (const json* endpoint = fields.object("endpoint")) parsed.endpoint = readEndpoint(*endpoint, fault);
  return parsed;
}

}  // namespace

std::optional<ParsedAccessory> parseAccessoryDescription(std::string_view text, std::string& fault) {
  fault.clear();
  if (text.size() > kLongestDescription) {
    fault = "it is longer than 64 KiB";
    return std::nullopt;
  }
  const json parsed = json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (parsed.is_discarded()) {
    fault = "it is not JSON";
  } else if (!parsed.is_object()) {
    fault = "it is no JSON object";
  } else {
    ParsedAccessory accessory = readAccessory(parsed, fault);
    if (fault.empty()) return accessory;
  }
  return std::nullopt;
}

}  // namespace zel::platform

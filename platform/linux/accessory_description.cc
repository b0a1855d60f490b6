#include "platform/linux/accessory_description.h"

#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

namespace zel::platform {
namespace {

using Json = nlohmann::json;

// Maximum nesting depth; a description needs two levels.
constexpr int kDeepest = 16;

// Reads fields of one object. After the first fault it reads no more, so one check at the end is enough.
class Fields {
 public:
  Fields(const Json& object, std::string prefix, std::string& fault)
      : object_(object), prefix_(std::move(prefix)), fault_(fault) {}

  std::string text(const char* name) {
    const Json* field = find(name);
    if (field == nullptr) return {};
    const auto* value = field->get_ptr<const std::string*>();
    if (value == nullptr) return refuse<std::string>(name, "is not a string");
    if (value->find('\0') != std::string::npos) return refuse<std::string>(name, "holds a zero character");
    return *value;
  }

  std::string filledText(const char* name) {
    std::string value = text(name);
    return fault_.empty() && value.empty() ? refuse<std::string>(name, "is empty") : value;
  }

  std::uint64_t number(const char* name, std::uint64_t least, std::uint64_t most, const char* what) {
    const Json* field = find(name);
    if (field == nullptr) return 0;
    if (!field->is_number_unsigned()) return refuse<std::uint64_t>(name, what);
    const auto value = field->get<std::uint64_t>();
    return value < least || value > most ? refuse<std::uint64_t>(name, what) : value;
  }

  std::vector<std::string> texts(const char* name) {
    const Json* field = find(name);
    if (field == nullptr) return {};
    if (!field->is_array()) return refuse<std::vector<std::string>>(name, "is not a list");
    std::vector<std::string> values;
    for (const Json& item : *field) {
      const auto* value = item.get_ptr<const std::string*>();
      if (value == nullptr) return refuse<std::vector<std::string>>(name, "holds something that is not a string");
      values.push_back(*value);
    }
    return values;
  }

  const Json* object(const char* name) {
    const Json* field = find(name);
    if (field != nullptr && !field->is_object()) return refuse<const Json*>(name, "is not an object");
    return field;
  }

  template <class Value>
  Value refuse(const char* name, const std::string& what) {
    if (fault_.empty()) fault_ = "\"" + prefix_ + name + "\" " + what;
    return Value();
  }

 private:
  const Json* find(const char* name) {
    if (!fault_.empty()) return nullptr;
    const auto found = object_.find(name);
    return found != object_.end() ? &*found : refuse<const Json*>(name, "is missing");
  }

  const Json& object_;
  const std::string prefix_;
  std::string& fault_;
};

Endpoint readEndpoint(const Json& object, std::string& fault) {
  Fields fields(object, "endpoint.", fault);
  const std::string type = fields.text("type");
  if (type == "unix") {
    std::string path = fields.filledText("path");
    if (path.size() > kLongestSocketPath) fields.refuse<int>("path", "is longer than 107 bytes");
    return UnixEndpoint{std::move(path)};
  }
  if (type == "tcp") {
    std::string host = fields.filledText("host");
    const auto port = fields.number("port", 1, std::numeric_limits<std::uint16_t>::max(), "is not from 1 to 65535");
    return TcpEndpoint{std::move(host), static_cast<std::uint16_t>(port)};
  }
  if (type == "device") return DeviceEndpoint{fields.filledText("path")};
  return fields.refuse<UnixEndpoint>("type", "is none of unix, tcp, device");
}

ParsedAccessory readAccessory(const Json& object, std::string& fault) {
  Fields fields(object, "", fault);
  ParsedAccessory accessory;
  AccessoryDescription& description = accessory.description;
  description.connectionID = fields.number("connectionID", 0, std::numeric_limits<std::uint64_t>::max(),
                                           "is not a whole number from 0 to 18446744073709551615");
  description.manufacturer = fields.text("manufacturer");
  description.name = fields.text("name");
  description.modelNumber = fields.text("modelNumber");
  description.serialNumber = fields.text("serialNumber");
  description.firmwareRevision = fields.text("firmwareRevision");
  description.hardwareRevision = fields.text("hardwareRevision");
  description.protocolStrings = fields.texts("protocolStrings");
  description.dockType = fields.text("dockType");
  if (const Json* endpoint = fields.object("endpoint")) accessory.endpoint = readEndpoint(*endpoint, fault);
  return accessory;
}

}  // namespace

std::optional<ParsedAccessory> parseAccessoryDescription(std::string_view json, std::string& fault) {
  fault.clear();
  if (json.size() > kLargestAccessoryFile) {
    fault = "is larger than 65536 bytes";
    return std::nullopt;
  }
  bool tooDeep = false;
  const auto bounded = [&](int depth, Json::parse_event_t, Json&) {
    tooDeep = tooDeep || depth > kDeepest;
    return !tooDeep;  // refused values are not stored
  };
  const Json document = Json::parse(json.begin(), json.end(), bounded, false);
  if (tooDeep) {
    fault = "is nested deeper than 16 levels";
  } else if (document.is_discarded()) {
    fault = "is not JSON";
  } else if (!document.is_object()) {
    fault = "is not a JSON object";
  }
  if (!fault.empty()) return std::nullopt;
  ParsedAccessory accessory = readAccessory(document, fault);
  if (!fault.empty()) return std::nullopt;
  return accessory;
}

}  // namespace zel::platform

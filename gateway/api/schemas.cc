#include "gateway/api/schemas.h"

#include <ZELTarkaSDK/Operations.h>
#include <ZELTarkaSDK/ZELMessageKeys.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <string>
#include <string_view>
#include <vector>

#include "gateway/cameras/held_status.h"
#include "gateway/json/operation_text.h"

namespace zel::gateway {
namespace {

using nlohmann::ordered_json;

ordered_json type(std::string_view name) { return {{"type", name}}; }
ordered_json orNull(std::string_view name) { return {{"type", {name, "null"}}}; }
ordered_json listOf(const ordered_json& items) { return {{"type", "array"}, {"items", items}}; }

// All members are required, and there are no others.
ordered_json whole(const ordered_json& members) {
  ordered_json names = ordered_json::array();
  for (const auto& [name, value] : members.items()) names.push_back(name);
  return {{"type", "object"}, {"properties", members}, {"required", names}, {"additionalProperties", false}};
}

ordered_json optionally(const ordered_json& members, const std::vector<std::string>& required) {
  ordered_json object = whole(members);
  object["required"] = required;
  return object;
}

ordered_json problemSchema() {
  return optionally({{"status", type("integer")},
                     {"title", type("string")},
                     {"detail", type("string")},
                     {"domain", type("string")},
                     {"code", type("integer")}},
                    {"status", "title", "detail"});
}

ordered_json camerasSchema() {
  ordered_json statuses = ordered_json::array();
  for (const auto status :
       {CameraStatus::absent, CameraStatus::opening, CameraStatus::streaming, CameraStatus::silent}) {
    statuses.push_back(toString(status));
  }
  const ordered_json camera = whole({{"serial", type("string")},
                                     {"name", type("string")},
                                     {"firmware", type("string")},
                                     {"status", {{"enum", statuses}}},
                                     {"busy", {{"type", "boolean"}, {"description", "another program has it"}}}});
  return whole({{"cameras", listOf(camera)}});
}

ordered_json infoSchema() {
  ordered_json members;
  for (const char* text :
       {"name", "manufacturer", "modelNumber", "serialNumber", "firmwareRevision", "hardwareRevision"})
    members[text] = type("string");
  for (const char* number : {"firewareVersion", "status", "clockOffset"}) members[number] = type("integer");
  for (const char* answer : {"powerType", "batteryLevel", "cardState", "cardSpaceWhole", "cardSpaceFree"})
    members[answer] = orNull("integer");
  for (const char* text : {"storedSerialNumber", "uuid"}) members[text] = orNull("string");
  for (const char* answer : {"videoTimeRemaining", "photoShotsRemaining"}) members[answer] = orNull("integer");
  ordered_json info = whole(members);
  info["properties"]["error"] =
      whole({{"code", type("integer")}, {"domain", type("string")}, {"message", type("string")}});
  return info;
}

// One operation with its arguments, as people read them: "type:u8".
ordered_json callOf(const Operation& operation) {
  const std::vector<std::string> arguments = argumentsOf(operation);
  const auto count = arguments.size();
  ordered_json list = {{"type", "array"},
                       {"minItems", count},
                       {"maxItems", count},
                       {"description", fmt::format("{}", fmt::join(arguments, ", "))}};
  ordered_json items = ordered_json::array();
  for (const std::string& argument : arguments) {
    items.push_back({{"title", argument}, {"type", {"string", "integer"}}});
  }
  if (count != 0) list["prefixItems"] = items;
  ordered_json call = {{"type", "object"},
                       {"title", operation.name},
                       {"properties", {{"operation", {{"const", operation.name}}}, {"args", list}}},
                       {"required", count != 0 ? ordered_json{"operation", "args"} : ordered_json{"operation"}}};
  return call;
}

ordered_json callSchema() {
  ordered_json names = ordered_json::array(), calls = ordered_json::array();
  for (const Operation& operation : operations()) {
    names.push_back(operation.name);
    calls.push_back(callOf(operation));
  }
  return {{"type", "object"},
          {"properties", {{"operation", {{"enum", names}}}, {"args", listOf({{"type", {"string", "integer"}}})}}},
          {"required", {"operation"}},
          {"additionalProperties", false},
          {"oneOf", calls}};
}

ordered_json recordingSchema() {
  const std::string size(key::fileSize);
  return optionally({{"record", {{"enum", {"start", "stop", "cancel"}}}},
                     {"fileName", orNull("string")},
                     {"fileTime", type("integer")},
                     {"fileSize", type("integer")},
                     {size, type("integer")}},
                    {"record"});
}

ordered_json filesSchema() {
  return whole({{"files", listOf(whole({{"name", type("string")},
                                        {"bytes", type("integer")},
                                        {"panorama", type("boolean")},
                                        {"time", {{"type", "string"}, {"format", "date-time"}}}}))}});
}

ordered_json lensSchema() {
  ordered_json lens;
  for (const char* number : {"radius", "x", "y", "yaw", "pitch", "roll"}) lens[number] = type("number");
  ordered_json schema = whole({{"offset", type("string")},
                               {"width", orNull("integer")},
                               {"height", orNull("integer")},
                               {"projection", orNull("string")},
                               {"fieldOfView", orNull("number")},
                               {"lenses", listOf(whole(lens))}});
  schema["properties"]["fault"] = type("string");
  return schema;
}

ordered_json stitchedSchema() {
  ordered_json stitched =
      optionally({{"width", type("integer")}, {"height", type("integer")}, {"bitrate", type("integer")}}, {});
  stitched["type"] = {"object", "null"};
  return stitched;
}

ordered_json outputSchema() {
  return whole({{"id", type("integer")},
                {"address", type("string")},
                {"stitched", stitchedSchema()},
                {"state", type("string")},
                {"retries", type("integer")},
                {"statistics", type("object")}});
}

ordered_json photoSchema() {
  const ordered_json steps = {{"type", {"array", "null"}},
                              {"items", {{"type", "integer"}, {"minimum", -128}, {"maximum", 127}}},
                              {"minItems", 1},
                              {"maxItems", 9}};
  return optionally({{"bracket", steps}, {"stitch", orNull("boolean")}}, {});
}

}  // namespace

ordered_json schemas() {
  return {{"Problem", problemSchema()},
          {"Cameras", camerasSchema()},
          {"Info", infoSchema()},
          {"Call", callSchema()},
          {"Reply", whole({{"operation", type("string")}, {"error", type("null")}, {"result", type("object")}})},
          {"Record", whole({{"action", {{"enum", {"start", "stop", "cancel"}}}}})},
          {"Recording", recordingSchema()},
          {"Photo", photoSchema()},
          {"Files", filesSchema()},
          {"Lens", lensSchema()},
          {"OutputRequest", optionally({{"address", type("string")}, {"stitched", stitchedSchema()}}, {"address"})},
          {"Output", outputSchema()},
          {"Outputs", whole({{"outputs", listOf(outputSchema())}})},
          {"Time", whole({{"now", type("integer")}})}};
}

}  // namespace zel::gateway

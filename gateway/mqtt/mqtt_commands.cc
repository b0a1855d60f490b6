#include "gateway/mqtt/mqtt_commands.h"

#include <fmt/format.h>

#include <memory>
#include <utility>
#include <variant>

#include "gateway/json/json_line.h"

namespace zel::gateway {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr std::string_view kCameraRow = "/api/v1/cameras/{serial}/";

ordered_json contentOf(const Response& response) {
  const auto* const text = std::get_if<std::string>(&response.content);
  ordered_json body = text != nullptr ? ordered_json::parse(*text, nullptr, false) : ordered_json();
  return body.is_discarded() ? ordered_json() : body;
}

MqttCommand commandOf(const Row& row) {
  return [row](const std::string& serialNumber, json body, const AnswerCommand& answer) {
    const auto request = std::make_shared<Request>();
    request->method = row.method;
    const RowCall call{*request, {{"serial", serialNumber}}, std::move(body)};
    row.handle(call, [request, answer](const Response& response) { answer(response.status, contentOf(response)); });
  };
}

std::string answerText(const ordered_json& id, int status, const ordered_json& body) {
  return jsonLine({{"id", id}, {"status", status}, {"body", body}});
}

std::string refusalText(const ordered_json& id, int status, std::string_view detail) {
  return answerText(id, status, contentOf(problem(status, detail)));
}

// An identifier that somebody gave to find the answer by; anything but a short text or a number is none.
ordered_json idIn(const json& body) {
  constexpr std::size_t kLongestId = 200;
  const auto id = body.find("id");
  if (id == body.end()) return nullptr;
  const bool isText = id->is_string() && id->get_ref<const std::string&>().size() <= kLongestId;
  return isText || id->is_number() ? ordered_json(*id) : ordered_json(nullptr);
}

}  // namespace

MqttCommands commandsOf(const std::vector<Row>& rows) {
  MqttCommands commands;
  for (const Row& row : rows) {
    if (row.method != "POST" || row.isLocal || !row.path.starts_with(kCameraRow)) continue;
    const std::string name = row.path.substr(kCameraRow.size());
    if (name.find('/') == std::string::npos) commands[name] = commandOf(row);
  }
  return commands;
}

void runCommand(const MqttCommands& commands, const std::string& serialNumber, const std::string& name,
                const std::string& content, std::function<void(std::string)> answer) {
  json body = content.empty() ? json::object() : json::parse(content, nullptr, false);
  if (!body.is_object()) return answer(refusalText(nullptr, 400, "a command is an object of JSON"));
  const ordered_json id = idIn(body);
  const auto command = commands.find(name);
  if (command == commands.end()) return answer(refusalText(id, 404, "there is no such command"));
  body.erase("id");
  command->second(
      serialNumber, std::move(body),
      [id, answer = std::move(answer)](int status, const ordered_json& said) { answer(answerText(id, status, said)); });
}

}  // namespace zel::gateway

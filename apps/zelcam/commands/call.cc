#include "apps/zelcam/commands/commands.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/link/command_camera.h"
#include "gateway/json/operation_text.h"

namespace zel::app {
namespace {

using gateway::argumentsIn;
using gateway::argumentsOf;
using gateway::callJson;
using gateway::optionsOf;
using gateway::resultJson;
using nlohmann::ordered_json;

int listOperations(const Settings& settings) {
  for (const Operation& operation : operations()) {
    const std::vector<std::string> arguments = argumentsOf(operation);
    const std::vector<std::string_view> options = optionsOf(operation);
    if (settings.json) {
      printJson({{"operation", operation.name},
                 {"arguments", arguments},
                 {"options", options},
                 {"result", operation.resultKeys}});
      continue;
    }
    printLine(fmt::format("{}{}{}{}", operation.name, arguments.empty() ? "" : " ", fmt::join(arguments, " "),
                          options.empty() ? "" : fmt::format(" [{}]", fmt::join(options, " "))));
  }
  return kDone;
}

// A call that is ready to be made.
struct ReadyCall {
  const Operation* operation = nullptr;
  std::vector<Operation::Value> arguments;
};

// The call of the command line.
// Errors: nothing, and an error message.
std::optional<ReadyCall> prepared(const Values& values, std::string& complaint) {
  const std::string name = values.text("OPERATION");
  const std::vector<std::string> texts = values.list("ARG");
  const Operation* const operation = findOperation(name);
  if (operation == nullptr) {
    complaint = name.empty() ? "which operation? \"zelcam call --list\" shows all"
                             : fmt::format("there is no operation {}; \"zelcam call --list\" shows all", name);
    return std::nullopt;
  }
  const std::vector<std::string> taken = argumentsOf(*operation);
  if (texts.size() != taken.size()) {
    const std::string takes = taken.empty() ? "no arguments" : fmt::format("{}", fmt::join(taken, " "));
    complaint = fmt::format("{} takes {}; {} were given", name, takes, texts.size());
    return std::nullopt;
  }
  const auto sensors = sensorsIn(values, complaint);
  if (!sensors) return std::nullopt;
  auto arguments = argumentsIn(*operation, texts, *sensors, complaint);
  if (!arguments) return std::nullopt;
  return ReadyCall{operation, std::move(*arguments)};
}

void show(const Operation& operation, const OperationReply& reply, const Settings& settings) {
  if (settings.json) return printJson(callJson(operation, reply));
  const ordered_json result = resultJson(operation, reply.values);
  for (const auto& [key, value] : result.items()) {
    printLine(fmt::format("{} = {}", key, value.is_string() ? printable(value.get<std::string>()) : value.dump()));
  }
  if (!reply.error) say(fmt::format("zelcam: {}: done", operation.name));
}

}  // namespace

int runCall(const Invocation& invocation) {
  const Settings& settings = invocation.settings;
  if (invocation.values.has("--list")) return listOperations(settings);
  std::string complaint;
  const auto ready = prepared(invocation.values, complaint);
  if (!ready) return complain(kWrongUsage, "call", complaint);
  const Operation& operation = *ready->operation;

  return withCamera(settings, [&](Camera& camera) {
    auto asked = camera.call(operation, ready->arguments, limitsOf(settings));
    sayAsked(settings);
    const auto reply = asked.get();
    if (!reply) return tellFailure(operation.name, reply.error(), settings);
    const int status = reply->error ? tellFailure(operation.name, *reply->error) : kDone;
    // Printed before the result, whose error keeps its form.
    if (status != kDone && settings.json) printFailure(status);
    show(operation, *reply, settings);
    return status;
  });
}

}  // namespace zel::app

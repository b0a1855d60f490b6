#include "apps/zelcam/commands/commands.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/platform/ports.h>

#include "apps/zelcam/commands/operation_text.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/link/answer.h"
#include "apps/zelcam/link/bus.h"
#include "apps/zelcam/link/camera_link.h"

namespace zel::app {
namespace {

using nlohmann::ordered_json;
using CallAnswer = Answer<ordered_json>;

constexpr double kWriteLook = 0.01;  // seconds between two looks at what still waits to be written

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

Waited waitForWriting(CameraLink& link, double seconds) {
  const auto wake = [&link] { link.wake(); };
  const auto tick = link.platform().ports().threads.currentRunLoop().scheduleRepeating(kWriteLook, wake);
  const Waited end = link.waitFor([&link] { return link.stack().statistics().bytesToWrite == 0; }, seconds);
  // An ended session also has nothing to write.
  return end == Waited::done && (link.isLost() || link.wasReopened()) ? Waited::lost : end;
}

Waited waitForEnd(CameraLink& link, Operation::Done done, const CallAnswer& answer, double seconds) {
  switch (done) {
    case Operation::Done::answered:
      return link.waitFor([&answer] { return answer.done; }, seconds);
    case Operation::Done::written:
      return waitForWriting(link, seconds);
    case Operation::Done::called:
      break;
  }
  return Waited::done;
}

void show(const Operation& operation, const CallAnswer& answer, const Settings& settings) {
  const ordered_json& result = std::get<0>(answer.values);
  if (settings.json) {
    return printJson({{"operation", operation.name}, {"error", errorJson(answer.error)}, {"result", result}});
  }
  for (const auto& [key, value] : result.items()) {
    printLine(fmt::format("{} = {}", key, value.is_string() ? printable(value.get<std::string>()) : value.dump()));
  }
  if (!answer.error) say(fmt::format("zelcam: {}: done", operation.name));
}

}  // namespace

int runCall(const Invocation& invocation) {
  const Settings& settings = invocation.settings;
  if (invocation.values.has("--list")) return listOperations(settings);
  std::string complaint;
  const auto ready = prepared(invocation.values, complaint);
  if (!ready) return complain(kWrongUsage, "call", complaint);
  const Operation& operation = *ready->operation;

  return withCamera(settings, [&](CameraLink& link) {
    const auto answer = std::make_shared<CallAnswer>();
    std::get<0>(answer->values) = ordered_json::object();
    operation.call(link.stack(), ready->arguments,
                   [&operation, keep = keepIn(answer, link.platform())](const auto& error, const auto& values) {
                     keep(error, resultJson(operation, values));
                   });
    link.sayAsked();
    const Waited end = waitForEnd(link, operation.done, *answer, settings.timeout);
    const int status = tellEnd(operation.name, end, answer->error, settings);
    // Printed before the result, whose error keeps its form.
    if (status != kDone && settings.json) printFailure(status);
    if (end == Waited::done) show(operation, *answer, settings);
    return status;
  });
}

}  // namespace zel::app

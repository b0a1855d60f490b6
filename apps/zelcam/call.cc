#include "apps/zelcam/call.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <ZELTarkaSDK/platform/ports.h>
#include "apps/zelcam/answer.h"
#include "apps/zelcam/bus.h"
#include "apps/zelcam/camera_link.h"
#include "apps/zelcam/operation.h"
#include "apps/zelcam/output.h"

namespace zel::app {
namespace {

using nlohmann::ordered_json;
using CallAnswer = Answer<ordered_json>;

constexpr double kWriteLook = 0.01;  // seconds between two looks at what still waits to be written

int listOperations(const Settings& settings) {
  for (const Operation& operation : operations()) {
    if (settings.json) {
      printJson({{"operation", operation.name},
                 {"arguments", operation.arguments},
                 {"options", operation.sensors},
                 {"result", operation.resultKeys}});
      continue;
    }
    const std::string options =
        operation.sensors.empty() ? "" : fmt::format(" [{}]", fmt::join(operation.sensors, " "));
    printLine(fmt::format("{}{}{}{}", operation.name, operation.arguments.empty() ? "" : " ",
                          fmt::join(operation.arguments, " "), options));
  }
  return kDone;
}

// The call of the command line.
// Errors: nothing, and an error message.
ReadyCall prepared(const Values& values, const Operation*& operation, std::string& complaint) {
  const std::string name = values.text("OPERATION");
  const std::vector<std::string> arguments = values.list("ARG");
  operation = findOperation(name);
  if (operation == nullptr) {
    complaint = name.empty() ? "which operation? \"zelcam call --list\" shows all"
                             : fmt::format("there is no operation {}; \"zelcam call --list\" shows all", name);
    return nullptr;
  }
  if (arguments.size() != operation->arguments.size()) {
    const std::string takes =
        operation->arguments.empty() ? "no arguments" : fmt::format("{}", fmt::join(operation->arguments, " "));
    complaint = fmt::format("{} takes {}; {} were given", name, takes, arguments.size());
    return nullptr;
  }
  auto sensors = sensorsIn(values, complaint);
  if (!sensors) return nullptr;
  return operation->prepare(*operation, {arguments, std::move(*sensors)}, complaint);
}

Waited waitForWriting(CameraLink& link, double seconds) {
  const auto wake = [&link] { link.wake(); };
  const auto tick = link.platform().ports().threads.currentRunLoop().scheduleRepeating(kWriteLook, wake);
  const Waited end = link.waitFor([&link] { return link.stack().statistics().bytesToWrite == 0; }, seconds);
  // An ended session also has nothing to write.
  return end == Waited::done && (link.isLost() || link.wasReopened()) ? Waited::lost : end;
}

Waited waitForEnd(CameraLink& link, DoneWhen doneWhen, const CallAnswer& answer, double seconds) {
  switch (doneWhen) {
    case DoneWhen::answered:
      return link.waitFor([&answer] { return answer.done; }, seconds);
    case DoneWhen::written:
      return waitForWriting(link, seconds);
    case DoneWhen::called:
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
  const Operation* operation = nullptr;
  std::string complaint;
  const ReadyCall ready = prepared(invocation.values, operation, complaint);
  if (!ready) return complain(kWrongUsage, "call", complaint);

  return withCamera(settings, [&](CameraLink& link) {
    const auto answer = std::make_shared<CallAnswer>();
    std::get<0>(answer->values) = ordered_json::object();
    ready(link.stack(), keepIn(answer, link.platform()));
    link.sayAsked();
    const Waited end = waitForEnd(link, operation->doneWhen, *answer, settings.timeout);
    const int status = tellEnd(operation->name, end, answer->error, settings);
    // Printed before the result, whose error keeps its form.
    if (status != kDone && settings.json) printFailure(status);
    if (end == Waited::done) show(*operation, *answer, settings);
    return status;
  });
}

}  // namespace zel::app

#include "apps/zelcam/commands/commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <future>
#include <string>
#include <utility>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"
#include "apps/zelcam/link/command_camera.h"
#include "gateway/json/info_json.h"

namespace zel::app {
namespace {

using nlohmann::ordered_json;

void printInfo(const ordered_json& object, const Settings& settings) {
  if (settings.json) return printJson(object);
  for (const auto& [key, value] : object.items()) {
    const std::string text = value.is_string() ? printable(value.get<std::string>()) : value.dump();
    printLine(fmt::format("{:<20}{}", key, value.is_null() ? "-" : text));
  }
}

gateway::InfoAnswers answersOf(Camera& camera, const RequestOptions& limits) {
  std::promise<gateway::InfoAnswers> answers;
  gateway::askForInfo(camera, limits, [&](gateway::InfoAnswers all) { answers.set_value(std::move(all)); });
  return answers.get_future().get();
}

int ask(Camera& camera, const Settings& settings) {
  const gateway::InfoAnswers answers = answersOf(camera, limitsOf(settings));
  if (wasInterrupted()) return kInterrupted;
  int status = kDone;
  ordered_json object = gateway::infoJson(camera, answers, [&](const std::string& key, const CameraError& error) {
    status = std::max(status, tellFailure(key, error, settings));
  });
  if (settings.json && status != kDone) object["error"] = failureJson(status);
  printInfo(object, settings);
  return status;
}

}  // namespace

int runInfo(const Invocation& invocation) {
  const Settings& settings = invocation.settings;
  return withCamera(settings, [&](Camera& camera) { return ask(camera, settings); });
}

}  // namespace zel::app

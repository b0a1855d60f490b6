#include "apps/zelcam/command_line.h"

#include <ZELTarkaSDK/Version.h>
#include <CLI/CLI.hpp>

#include <cmath>
#include <string>
#include <vector>

#include "apps/zelcam/command.h"
#include "apps/zelcam/diagnostics.h"
#include "apps/zelcam/number_text.h"
#include "apps/zelcam/output.h"

namespace zel::app {
namespace {

void describeSettings(CLI::App& app, Settings& settings) {
  app.set_version_flag("--version", std::string("zelcam ") + ZELTarkaSDKVersionString);
  app.require_subcommand(1);
  app.add_option("--accessories", settings.accessories, "folder of the accessory bus (default: $ZEL_ACCESSORIES)")
      ->type_name("DIR");
  app.add_option("--camera", settings.camera, "serial number of the camera; default: the first")
      ->envname("ZEL_CAMERA")
      ->type_name("SERIAL");
  app.add_option("--timeout", settings.timeout, "seconds to wait for a camera, and that long again for a reply")
      ->check(CLI::Range(0.0, 86400.0))
      ->type_name("SECONDS")
      ->capture_default_str();
  app.add_option("--log", settings.log, "append to FILE what is asked, how the link changes and what goes wrong")
      ->type_name("FILE");
  app.add_flag("--json", settings.json, "one JSON object a line");
  app.add_flag("--verbose", settings.verbose, "say more on standard error");
}

// The checks of the library accept what merely begins like a number.
CLI::Validator numberCheck(const Option& option) {
  const auto check = [option](const std::string& text) {
    const auto value = numberIn<double>(text);
    const bool whole = option.kind != Kind::integer || numberIn<std::int64_t>(text);
    if (value && whole && *value >= option.least && *value <= option.most) return std::string();
    return text + " is not " + (option.kind == Kind::integer ? "a whole number" : "a number") + " from " +
           CLI::detail::to_string(option.least) + " to " + CLI::detail::to_string(option.most);
  };
  return CLI::Validator(check, "");
}

// "-o,--output" is known to its command by its last name.
std::string_view keyOf(const Option& option) { return option.name.substr(option.name.rfind(',') + 1); }

CLI::callback_t keepIn(std::vector<std::string>& slot) {
  return [&slot](const CLI::results_t& given) {
    slot = given;
    return true;
  };
}

void describeOption(CLI::App& app, const Option& option, std::vector<std::string>& slot) {
  const std::string name(option.name), help(option.help);
  if (option.kind == Kind::flag) {
    app.add_flag_callback(
        name, [&slot] { slot = {"given"}; }, help);
    return;
  }
  CLI::Option* const described = app.add_option(name, keepIn(slot), help)->type_name(std::string(option.placeholder));
  if (option.repeated) described->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  if (option.kind != Kind::text) described->check(numberCheck(option));
}

void describeArgument(CLI::App& app, const Argument& argument, std::vector<std::string>& slot) {
  const std::string name(argument.name), help(argument.help);
  CLI::Option* const described =
      argument.repeated ? app.add_option(name, slot, help)->expected(0, -1) : app.add_option(name, keepIn(slot), help);
  described->type_name("")->required(argument.required);
  if (argument.choices.empty()) return;
  described->check(CLI::IsMember(std::vector<std::string>(argument.choices.begin(), argument.choices.end())));
}

CLI::App* describeCommand(CLI::App& app, const Command& command, Values& values) {
  CLI::App* const described = app.add_subcommand(std::string(command.name), std::string(command.summary));
  described->fallthrough();  // the program's options may stand behind the command as well
  described->footer("Example: " + std::string(command.example));
  for (const Argument& argument : command.arguments) describeArgument(*described, argument, values.slot(argument.name));
  for (const Option& option : command.options) describeOption(*described, option, values.slot(keyOf(option)));
  return described;
}

// The command, between two lines of the log where one is kept.
int runLogged(const Command& command, const Invocation& invocation, int argc, const char* const* argv) {
  std::string error;
  if (!invocation.settings.log.empty() && !keepLog(invocation.settings.log, error)) {
    return complain(kWrongUsage, "--log", error);
  }
  noteCommandLine(argc, argv);
  const int status = command.run(invocation);
  note("ended with status " + std::to_string(status));
  return status;
}

}  // namespace

int runCommandLine(int argc, const char* const* argv) {
  Invocation invocation;
  CLI::App app{"Drives a 360-degree camera.", "zelcam"};
  describeSettings(app, invocation.settings);
  std::vector<CLI::App*> described;
  for (const Command& command : commands()) described.push_back(describeCommand(app, command, invocation.values));
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& fault) {
    return app.exit(fault) == 0 ? kDone : kWrongUsage;
  }
  for (std::size_t i = 0; i < described.size(); ++i) {
    if (described[i]->parsed()) return runLogged(commands()[i], invocation, argc, argv);
  }
  return kWrongUsage;
}

}  // namespace zel::app

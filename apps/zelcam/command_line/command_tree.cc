#include "apps/zelcam/command_line/command_tree.h"

#include <ZELTarkaSDK/Operations.h>
#include <ZELTarkaSDK/PreviewFormat.h>
#include <ZELTarkaSDK/Version.h>

#include <string>
#include <vector>

#include "apps/zelcam/commands/commands.h"
#include "gateway/json/number_text.h"
#include "tools/manual/describe_option.h"
#include "tools/manual/wrong_usage.h"
namespace zel::app {
namespace {

using gateway::numberIn;

constexpr char kNotes[] = R"(Example: zelcam --json monitor --seconds 10

Environment:
  ZEL_ACCESSORIES  folder of the accessory bus; else $XDG_RUNTIME_DIR/zel/accessories, else /tmp/zel-accessories-UID
  ZEL_CAMERA       serial number of the camera

Exit status:
  0    done
  1    the camera refused or failed, or a file could not be written
  2    wrong usage; nothing was sent
  3    no camera, or another program has it; no answer in time, or the camera was lost
  130  interrupted before it was done
)";

// The library's checks accept text that only begins with a number, and "nan".
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

void describeSettings(CLI::App& app, Settings& settings) {
  app.set_version_flag("--version", std::string("zelcam ") + ZELTarkaSDKVersionString);
  app.require_subcommand(1);
  app.add_option("--accessories", settings.accessories, "folder of the accessory bus (default: $ZEL_ACCESSORIES)")
      ->type_name("DIR");
  app.add_option("--camera", settings.camera, "serial number of the camera; default: the first")
      ->envname("ZEL_CAMERA")
      ->type_name("SERIAL");
  app.add_option("--timeout", settings.timeout, "seconds to wait for a camera, and that long again for a reply")
      ->check(numberCheck({"--timeout", "SECONDS", "", Kind::number, 0, 86400}))
      ->type_name("SECONDS")
      ->capture_default_str();
  app.add_flag("--direct", settings.direct, "a session of its own with the camera, never through a gateway");
  app.add_option("--log", settings.log, "append to FILE what is asked, how the link changes and what goes wrong")
      ->type_name("FILE");
  app.add_flag("--json", settings.json, "one JSON object a line");
  app.add_flag("--verbose", settings.verbose, "say more on standard error");
  app.footer(kNotes);
}

// A command uses the last name of "-o,--output".
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

// Completions without a list in the parser: the command itself checks operations, with better messages.
manual::Words usualWords() {
  manual::Words words;
  for (const Operation& operation : operations()) words["OPERATION"].push_back(std::string(operation.name));
  for (std::size_t code = 0; code < kPreviewFormats.size(); ++code) words["CODE"].push_back(std::to_string(code));
  return words;
}

}  // namespace

CommandTree::CommandTree() {
  describeSettings(app_, invocation_.settings);
  manual::addDescribeOption(app_, usualWords());
  manual::explainWrongUsage(app_);
  for (const Command& command : commands()) described_.push_back(describeCommand(app_, command, invocation_.values));
}

const Command* CommandTree::chosen() const {
  for (std::size_t i = 0; i < described_.size(); ++i) {
    if (described_[i]->parsed()) return &commands()[i];
  }
  return nullptr;
}

}  // namespace zel::app

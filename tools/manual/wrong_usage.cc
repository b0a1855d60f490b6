#include "tools/manual/wrong_usage.h"

#include <string>

namespace zel::manual {
namespace {

// The parser reports a missing command, without the unknown word that was given.
std::string faultOf(const CLI::App& app, const CLI::Error& fault) {
  if (!app.get_subcommands().empty() || app.get_require_subcommand_min() == 0) return fault.what();
  if (dynamic_cast<const CLI::RequiredError*>(&fault) == nullptr) return fault.what();
  const auto words = app.remaining();
  return words.empty() ? "a command is missing" : "there is no command \"" + words.front() + "\"";
}

std::string messageOf(const CLI::App* app, const CLI::Error& fault) {
  std::string program = app->get_name(), speaker = program;
  for (const CLI::App* command : app->get_subcommands()) {
    program += " " + command->get_name();
    speaker += ": " + command->get_name();
  }
  return speaker + ": " + faultOf(*app, fault) + "\n\"" + program + " --help\" tells what it takes\n";
}

}  // namespace

void explainWrongUsage(CLI::App& app) { app.failure_message(messageOf); }

}  // namespace zel::manual

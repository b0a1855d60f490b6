#include "apps/zelcam/command_line/command_line.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <string>
#include <string_view>

#include "apps/zelcam/command_line/command_tree.h"
#include "apps/zelcam/command_line/settings.h"
#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/diagnostics.h"

namespace zel::app {
namespace {

// Flushes the output, and returns the exit status. If standard output cannot be written, that is the reason why the
// command was stopped.
int closed(int status, bool json) {
  if (json && status != kDone) printFailure(status);
  const int fault = standardOutputFault();
  if (fault == 0) return status;
  sayFailure(fmt::format("cannot write standard output: {}", std::strerror(fault)));
  return status == kDone || status == kInterrupted ? kRefused : status;
}

// Runs the command, between two lines of the log, if any.
int runLogged(const Command& command, const Invocation& invocation, int argc, const char* const* argv) {
  std::string error;
  if (!invocation.settings.log.empty() && !keepLog(invocation.settings.log, error)) {
    return closed(complain(kWrongUsage, "--log", error), invocation.settings.json);
  }
  noteCommandLine(argc, argv);
  const int status = closed(command.run(invocation), invocation.settings.json);
  note("ended with status " + std::to_string(status));
  return status;
}

// Prints help or a usage error in the parser's words.
int answerParser(CLI::App& parser, const CLI::ParseError& end, bool json) {
  std::ostringstream help, complaint;
  const bool isGood = parser.exit(end, help, complaint) == 0;
  if (isGood) printText(help.str());
  std::istringstream lines(complaint.str());
  for (std::string line; std::getline(lines, line);) say(line);
  return closed(isGood ? kDone : kWrongUsage, json);
}

}  // namespace

int runCommandLine(int argc, const char* const* argv) {
  CommandTree tree;
  try {
    tree.parser().parse(argc, argv);
  } catch (const CLI::ParseError& end) {
    // The parser may have stopped before --json.
    const bool json = std::find(argv, argv + argc, std::string_view("--json")) != argv + argc;
    return answerParser(tree.parser(), end, json);
  }
  const Command* const command = tree.chosen();
  if (command == nullptr) return kWrongUsage;
  Invocation invocation = tree.invocation();
  invocation.settings.command = command->name;
  return runLogged(*command, invocation, argc, argv);
}

}  // namespace zel::app

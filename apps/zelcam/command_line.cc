#include "apps/zelcam/command_line.h"

#include <string>

#include "apps/zelcam/command_tree.h"
#include "apps/zelcam/diagnostics.h"
#include "apps/zelcam/output.h"

namespace zel::app {
namespace {

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
  CommandTree tree;
  try {
    tree.parser().parse(argc, argv);
  } catch (const CLI::ParseError& fault) {
    return tree.parser().exit(fault) == 0 ? kDone : kWrongUsage;
  }
  const Command* const command = tree.chosen();
  if (command == nullptr) return kWrongUsage;
  Invocation invocation = tree.invocation();
  invocation.settings.command = command->name;
  return runLogged(*command, invocation, argc, argv);
}

}  // namespace zel::app

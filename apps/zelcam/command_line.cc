#include "apps/zelcam/command_line.h"

#include "apps/zelcam/command_tree.h"

namespace zel::app {

int runCommandLine(int argc, const char* const* argv) {
  CommandTree tree;
  try {
    tree.parser().parse(argc, argv);
  } catch (const CLI::ParseError& fault) {
    return tree.parser().exit(fault) == 0 ? kDone : kWrongUsage;
  }
  const Command* const command = tree.chosen();
  return command != nullptr ? command->run(tree.invocation()) : kWrongUsage;
}

}  // namespace zel::app

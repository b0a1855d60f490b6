#pragma once

#include <CLI/CLI.hpp>

#include <vector>

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// The program's command line: the table of commands as its parser has it, and what was given.
class CommandTree {
 public:
  CommandTree();
  CommandTree(const CommandTree&) = delete;  // the parser writes into the object
  CommandTree& operator=(const CommandTree&) = delete;

  CLI::App& parser() { return app_; }

  // The command that the parsed line names; null where it names none.
  const Command* chosen() const;
  const Invocation& invocation() const { return invocation_; }

 private:
  Invocation invocation_;
  CLI::App app_{"Drives a 360-degree camera.", "zelcam"};
  std::vector<CLI::App*> described_;
};

}  // namespace zel::app

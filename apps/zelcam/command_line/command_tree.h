#pragma once

#include <CLI/CLI.hpp>

#include <vector>

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// The program's command line: a parser built from the table of commands, and the parsed values.
class CommandTree {
 public:
  CommandTree();
  CommandTree(const CommandTree&) = delete;  // the parser writes into the object
  CommandTree& operator=(const CommandTree&) = delete;

  CLI::App& parser() { return app_; }

  // The command of the parsed line; null if there is none.
  const Command* chosen() const;
  const Invocation& invocation() const { return invocation_; }

 private:
  Invocation invocation_;
  CLI::App app_{"Drives a 360-degree camera.", "zelcam"};
  std::vector<CLI::App*> described_;
};

}  // namespace zel::app

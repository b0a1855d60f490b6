#pragma once

#include <CLI/CLI.hpp>

#include "simulator/simulator_options.h"

namespace zel::simulator {

// The commands on standard input besides events.
extern const char kCommandHelp[];

// zelcam-sim's command line.
class CommandLine {
 public:
  CommandLine();
  CommandLine(const CommandLine&) = delete;  // the parser writes into the object
  CommandLine& operator=(const CommandLine&) = delete;

  CLI::App& parser() { return app_; }
  // The parsed options.
  const SimulatorOptions& options() const { return options_; }

 private:
  SimulatorOptions options_;
  CLI::App app_{"A simulated 360-degree camera on the accessory bus.", "zelcam-sim"};
};

}  // namespace zel::simulator

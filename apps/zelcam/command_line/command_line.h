#pragma once

namespace zel::app {

// Parses the command line with the table of commands and runs the command.
// Returns the exit status; a usage error is printed on standard error and gives kWrongUsage.
int runCommandLine(int argc, const char* const* argv);

}  // namespace zel::app

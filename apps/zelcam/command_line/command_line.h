#pragma once

namespace zel::app {

// Reads the command line against the table of commands and runs the command that it names.
// Returns the exit status: wrong usage is told on standard error and ends with kWrongUsage.
int runCommandLine(int argc, const char* const* argv);

}  // namespace zel::app

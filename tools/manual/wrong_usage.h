#pragma once

#include <CLI/CLI.hpp>

namespace zel::manual {

// Lets a program say, of a command line that it does not take, what is wrong and which --help tells more.
void explainWrongUsage(CLI::App& app);

}  // namespace zel::manual

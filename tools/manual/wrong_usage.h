#pragma once

#include <CLI/CLI.hpp>

namespace zel::manual {

// Makes a program's usage errors say what is wrong and which --help to read.
void explainWrongUsage(CLI::App& app);

}  // namespace zel::manual

#pragma once

#include "tools/manual/program_text.h"

namespace zel::manual {

// Adds "--describe FORM" to a program: it prints the manual page (man) or a shell completion (bash, zsh), generated
// from the program's own description, and ends the parsing like --help. words: as for describeProgram().
// Owner:  the program must outlive its parsing.
void addDescribeOption(CLI::App& app, Words words = {});

}  // namespace zel::manual

#pragma once

#include "tools/manual/program_text.h"

namespace zel::manual {

// Adds "--describe FORM" to a program: it prints the manual page (man) or a shell's completion (bash, zsh), made from
// the program's own description, and ends the parsing as --help does. words: as describeProgram() takes them.
// Owner:  the program must outlive its parsing.
void addDescribeOption(CLI::App& app, Words words = {});

}  // namespace zel::manual

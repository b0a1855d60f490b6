#pragma once

#include <string>

#include "tools/manual/program_text.h"

// The forms of a program's description.

namespace zel::manual {

// A bash completion script for the program. It needs only bash.
std::string bashCompletion(const ProgramText& text);

// A zsh completion function for the program, for a file _PROGRAM in $fpath.
std::string zshCompletion(const ProgramText& text);

// The program's manual page of section 1, as roff with the man macros.
std::string manualPage(const ProgramText& text);

}  // namespace zel::manual

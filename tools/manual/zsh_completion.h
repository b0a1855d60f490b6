#pragma once

#include <string>

#include "tools/manual/program_text.h"

namespace zel::manual {

// A zsh completion function for the program, for a file _PROGRAM in $fpath.
std::string zshCompletion(const ProgramText& text);

}  // namespace zel::manual

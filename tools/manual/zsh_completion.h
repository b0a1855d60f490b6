#pragma once

#include <string>

#include "tools/manual/program_text.h"

namespace zel::manual {

// The function that tells zsh how the program's command line goes on, for a file _PROGRAM in its $fpath.
std::string zshCompletion(const ProgramText& text);

}  // namespace zel::manual

#pragma once

#include <string>

#include "tools/manual/program_text.h"

namespace zel::manual {

// A bash completion script for the program. It needs only bash.
std::string bashCompletion(const ProgramText& text);

}  // namespace zel::manual

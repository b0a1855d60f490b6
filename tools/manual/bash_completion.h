#pragma once

#include <string>

#include "tools/manual/program_text.h"

namespace zel::manual {

// A script that tells bash how the program's command line goes on. It needs bash alone.
std::string bashCompletion(const ProgramText& text);

}  // namespace zel::manual

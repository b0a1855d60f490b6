#pragma once

#include <string>

#include "tools/manual/program_text.h"

namespace zel::manual {

// The program's manual page of section 1, as roff with the man macros.
std::string manualPage(const ProgramText& text);

}  // namespace zel::manual

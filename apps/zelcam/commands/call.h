#pragma once

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// `zelcam call`: makes one call of any operation and shows its error and its reply's values. `--list` shows all
// operations instead. Returns the exit status.
int runCall(const Invocation& invocation);

}  // namespace zel::app

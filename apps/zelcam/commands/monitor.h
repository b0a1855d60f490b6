#pragma once

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// `zelcam monitor`: watches the link for `--seconds` after the first frame, or until the user stops it. A camera that
// leaves meanwhile is reported and waited for. Returns the exit status: 3 when no frame came within the time-out.
int runMonitor(const Invocation& invocation);

}  // namespace zel::app

#pragma once

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// Runs the simulator and every kind of command against it, and reads back what they made.
int runDemo(const Invocation& invocation);

}  // namespace zel::app

#pragma once

#include "apps/zelcam/command.h"

namespace zel::app {

// Runs the simulator and every kind of command with it, and checks the results.
int runDemo(const Invocation& invocation);

}  // namespace zel::app

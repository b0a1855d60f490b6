#pragma once

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// `zelcam devices`: the accessories present; with `--watch` also those that come and go, until the user stops it.
// Returns the exit status. No accessory at all is an empty list and no failure.
int runDevices(const Invocation& invocation);

}  // namespace zel::app

#pragma once

#include "apps/zelcam/command.h"

namespace zel::app {

// `zelcam devices`: lists the attached accessories; with `--watch` also reports attaching and detaching, until the user
// stops it. Returns the exit status. An empty list is no failure.
int runDevices(const Invocation& invocation);

}  // namespace zel::app

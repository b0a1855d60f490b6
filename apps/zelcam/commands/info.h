#pragma once

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// `zelcam info`: who the camera is and how it is, in one table. Returns the exit status: what the camera refused or did
// not answer is told apart from the rest, which is shown.
int runInfo(const Invocation& invocation);

}  // namespace zel::app

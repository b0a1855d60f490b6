#pragma once

#include "apps/zelcam/command.h"

namespace zel::app {

// `zelcam info`: prints the camera's identity and state as a table. Returns the exit status. Values that the camera
// refuses or does not send are reported separately.
int runInfo(const Invocation& invocation);

}  // namespace zel::app

#pragma once

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// `zelcam record`: starts, stops or cancels a recording on the camera. Returns the exit status.
int runRecord(const Invocation& invocation);

}  // namespace zel::app

#pragma once

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// `zelcam events`: shows the camera's events as they come, `--count` of them or until the user stops it. Returns the
// exit status: 3 where the camera is lost before that.
int runEvents(const Invocation& invocation);

}  // namespace zel::app

#pragma once

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// `zelcam live`: streams the camera's pictures, stitched, and its sound to files and servers, until `--duration` is
// over or the user stops it. Returns the exit status.
int runLive(const Invocation& invocation);

}  // namespace zel::app

#pragma once

#include "apps/zelcam/command.h"

namespace zel::app {

// `zelcam thumbnail`: one picture from a file's last keyframe, unwrapped with `--offset`. Returns the exit status. No
// camera is needed.
int runThumbnail(const Invocation& invocation);

}  // namespace zel::app

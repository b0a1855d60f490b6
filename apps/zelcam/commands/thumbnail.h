#pragma once

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// `zelcam thumbnail`: one picture out of a file's key frame, unwrapped where `--offset` is given. Returns the exit
// status. No camera is needed.
int runThumbnail(const Invocation& invocation);

}  // namespace zel::app

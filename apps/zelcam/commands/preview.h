#pragma once

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// `zelcam preview`: decodes the camera's preview, tells how it runs, and saves one picture where `--snapshot` asks for
// it. `--frames` pictures, or until the user stops it. Returns the exit status.
int runPreview(const Invocation& invocation);

}  // namespace zel::app

#pragma once

#include "apps/zelcam/command.h"

namespace zel::app {

// `zelcam preview`: decodes the camera's preview, prints statistics, and saves one picture with `--snapshot`. Ends
// after `--frames` pictures, or when the user stops it. Returns the exit status.
int runPreview(const Invocation& invocation);

}  // namespace zel::app

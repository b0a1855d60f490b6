#pragma once

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// `zelcam upload`: sends a file to the camera. The time-out counts from the last byte that the camera took. Returns the
// exit status.
int runUpload(const Invocation& invocation);

}  // namespace zel::app

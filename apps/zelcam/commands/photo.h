#pragma once

#include "apps/zelcam/command_line/command.h"

namespace zel::app {

// `zelcam photo`: has the camera take a photo, or an exposure bracket, and saves what it sends. Returns the exit
// status.
int runPhoto(const Invocation& invocation);

}  // namespace zel::app

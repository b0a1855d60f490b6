#pragma once

#include "apps/zelcam/command.h"

namespace zel::app {

// `zelcam photo`: takes a photo, or an exposure bracket, and saves the pictures. Returns the exit status.
int runPhoto(const Invocation& invocation);

}  // namespace zel::app

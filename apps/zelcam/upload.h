#pragma once

#include "apps/zelcam/command.h"

namespace zel::app {

// `zelcam upload`: sends a file to the camera. The timeout counts from the last byte that the camera accepted. Returns
// the exit status.
int runUpload(const Invocation& invocation);

}  // namespace zel::app

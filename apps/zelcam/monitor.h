#pragma once

#include <ZELTarkaSDK/LinuxPlatform.h>

#include <optional>

#include "apps/zelcam/settings.h"

namespace zel::app {

// `zelcam monitor`: watches the link for that many seconds after the first frame, or until the user stops it. A camera
// that leaves meanwhile is reported and waited for. Returns the exit status: 3 when no frame came within the time-out.
int runMonitor(LinuxPlatform& platform, const Settings& settings, std::optional<double> seconds);

}  // namespace zel::app

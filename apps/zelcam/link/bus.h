#pragma once

#include <ZELTarkaSDK/LinuxPlatform.h>

#include <memory>

#include "apps/zelcam/command_line/settings.h"

namespace zel::app {

// The accessory bus, for a command that opens no camera.
//
// Errors: null if the folder is unusable, after it has printed why.
std::unique_ptr<LinuxPlatform> openBus(const Settings& settings);

// Prints where the bus is, for --verbose.
void sayBus(const Settings& settings);

}  // namespace zel::app

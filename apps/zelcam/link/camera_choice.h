#pragma once

#include <ZELTarkaSDK/LinuxPlatform.h>

#include <memory>
#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/accessory.h>
#include "apps/zelcam/command_line/settings.h"

namespace zel::app {

using Accessories = std::vector<std::shared_ptr<platform::Accessory>>;

// The attached accessories that the settings ask for: all, or the one with the chosen serial number.
Accessories chosenAccessories(LinuxPlatform& platform, const Settings& settings);

// Where nobody chose one of several cameras: says which one is used, by its serial number, and which ones there are.
void sayUsedCamera(LinuxPlatform& platform, const Settings& settings, const std::string& used);

// Says that the chosen camera is not there, and which ones are.
void sayUnknownCamera(LinuxPlatform& platform, const Settings& settings);

}  // namespace zel::app

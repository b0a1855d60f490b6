#pragma once

#include <memory>
#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/accessory.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "apps/zelcam/command_line/settings.h"

namespace zel::app {

using Accessories = std::vector<std::shared_ptr<platform::Accessory>>;

// The attached accessories that the settings ask for: all, or the one with the chosen serial number.
Accessories chosenAccessories(const platform::Ports& ports, const Settings& settings);

// If there are several cameras and none was chosen: prints which one is used, and all serial numbers.
void sayUsedCamera(const platform::Ports& ports, const Settings& settings, const std::string& used);

// Prints that the chosen camera is not attached, and which ones are.
void sayUnknownCamera(const platform::Ports& ports, const Settings& settings);

}  // namespace zel::app

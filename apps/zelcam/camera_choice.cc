#include "apps/zelcam/camera_choice.h"

#include <fmt/format.h>

#include "apps/zelcam/output.h"
#include "platform/ports.h"

namespace zel::app {

Accessories chosenAccessories(LinuxPlatform& platform, const Settings& settings) {
  Accessories accessories = platform.ports().accessories.connectedAccessories();
  if (settings.camera.empty()) return accessories;
  std::erase_if(accessories, [&](const auto& one) { return one->description().serialNumber != settings.camera; });
  return accessories;
}

void sayUnknownCamera(LinuxPlatform& platform, const Settings& settings) {
  const Accessories present = platform.ports().accessories.connectedAccessories();
  say(fmt::format("zelcam: no camera with the serial number {} is attached{}", settings.camera,
                  present.empty() ? "; none is" : "; present are:"));
  for (const auto& one : present)
    say(fmt::format("  {}  {}", one->description().serialNumber, one->description().name));
}

}  // namespace zel::app

#include "apps/zelcam/link/camera_choice.h"

#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <fmt/format.h>

#include <algorithm>

#include <ZELTarkaSDK/platform/ports.h>

#include "apps/zelcam/host/console.h"

namespace zel::app {
namespace {

void sayCameras(const Accessories& cameras) {
  for (const auto& one : cameras)
    say(fmt::format("  {}  {}", one->description().serialNumber, one->description().name));
}

}  // namespace

Accessories chosenAccessories(const platform::Ports& ports, const Settings& settings) {
  Accessories accessories = ports.accessories.connectedAccessories();
  if (settings.camera.empty()) return accessories;
  std::erase_if(accessories, [&](const auto& one) { return one->description().serialNumber != settings.camera; });
  return accessories;
}

void sayUsedCamera(const platform::Ports& ports, const Settings& settings, const std::string& used) {
  if (!settings.camera.empty()) return;
  Accessories cameras = ports.accessories.connectedAccessories();
  std::erase_if(cameras, [](const auto& one) {
    return std::ranges::count(one->description().protocolStrings, kAccessoryProtocol) == 0;
  });
  if (cameras.size() < 2) return;
  say(fmt::format("zelcam: {} cameras are attached, and {} is used; --camera takes another one of:", cameras.size(),
                  used));
  sayCameras(cameras);
}

void sayUnknownCamera(const platform::Ports& ports, const Settings& settings) {
  const Accessories present = ports.accessories.connectedAccessories();
  sayFailure(fmt::format("no camera with the serial number {} is attached{}", settings.camera,
                         present.empty() ? "; none is" : "; present are:"));
  sayCameras(present);
}

}  // namespace zel::app

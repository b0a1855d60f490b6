#include "apps/zelcam/bus.h"

#include <string>

#include "apps/zelcam/interrupt.h"
#include "apps/zelcam/output.h"

namespace zel::app {

Bus::Bus(const Settings& settings) : mediaLibrary_([](const std::string& fault) { say("zelcam: " + fault); }) {
  std::string error;
  platform_ =
      LinuxPlatform::create({.accessoriesFolder = settings.accessories, .warn = say, .documentsFolder = {}}, error);
  if (!platform_) {
    say("zelcam: " + error);
    return;
  }
  if (settings.verbose) {
    say("zelcam: the accessory bus is " + LinuxPlatform::accessoriesFolder(settings.accessories));
  }
  stopMainQueueOnInterrupt(*platform_);
}

platform::Ports Bus::ports() {
  platform::Ports ports = platform_->ports();
  ports.videoDecoders = decodes_ ? &videoDecoders_ : nullptr;
  ports.videoEncoders = &videoEncoders_;
  ports.mediaLibrary = &mediaLibrary_;
  return ports;
}

Bus::~Bus() { detachInterrupts(); }

}  // namespace zel::app

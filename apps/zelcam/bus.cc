#include "apps/zelcam/bus.h"

#include <string>

#include "apps/zelcam/interrupt.h"
#include "apps/zelcam/output.h"

namespace zel::app {

Bus::Bus(const Settings& settings, int decoderThreads) {
  std::string error;
  platform_ = LinuxPlatform::create({.accessoriesFolder = settings.accessories, .warn = say}, error);
  if (!platform_) {
    sayFailure(error);
    return;
  }
  if (settings.verbose) {
    say("zelcam: the accessory bus is " + LinuxPlatform::accessoriesFolder(settings.accessories));
  }
  media_ = std::make_unique<LinuxMedia>(
      platform_->ports(),
      LinuxMedia::Options{[](const std::string& fault) { say("zelcam: " + fault); }, decoderThreads});
  videoDecoders_ = std::make_unique<NotingDecoders>(*media_->ports().videoDecoders, arrivals_);
  stopMainQueueOnInterrupt(*platform_);
}

platform::Ports Bus::ports() {
  platform::Ports ports = media_->ports();
  ports.videoDecoders = decodes_ ? videoDecoders_.get() : nullptr;
  return ports;
}

Bus::~Bus() { detachInterrupts(); }

}  // namespace zel::app

#include "apps/zelcam/link/bus.h"

#include <string>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"

namespace zel::app {

Bus::Bus(const Settings& settings, int decoderThreads) {
  std::string error;
  // One command is one host: the program keeps the camera between two connections of `live --reconnect`.
  platform_ = LinuxPlatform::create({.accessoriesFolder = settings.accessories,
                                     .warn = say,
                                     .inUse = [this](const CameraInUse& camera) { noteInUse(camera); },
                                     .program = "zelcam " + settings.command,
                                     .keepCameras = true},
                                    error);
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
  stopMainQueueOnInterrupt(*platform_);
}

platform::Ports Bus::ports() {
  const platform::Ports& all = media_->ports();
  return {all.clock,        all.threads,       all.queues,
          all.accessories,  all.notifications, decodes_ ? all.videoDecoders : nullptr,
          all.mediaLibrary, all.videoEncoders, all.documents};
}

void Bus::noteInUse(const CameraInUse& camera) {
  inUse_.set(camera.inWords());
  platform_->stopMainQueue();
}

Bus::~Bus() { detachInterrupts(); }

}  // namespace zel::app

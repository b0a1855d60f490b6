#include "apps/zelcam/link/bus.h"

#include <string>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/interrupt.h"

namespace zel::app {

std::unique_ptr<LinuxPlatform> openBus(const Settings& settings) {
  hearInterrupts();
  std::string error;
  auto platform = LinuxPlatform::create({.accessoriesFolder = settings.accessories,
                                         .warn = say,
                                         .program = "zelcam " + settings.command,
                                         .direct = settings.direct},
                                        error);
  if (!platform) sayFailure(error);
  if (platform && settings.verbose) sayBus(settings);
  return platform;
}

void sayBus(const Settings& settings) {
  say("zelcam: the accessory bus is " + LinuxPlatform::accessoriesFolder(settings.accessories));
}

}  // namespace zel::app

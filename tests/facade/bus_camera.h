#pragma once

#include <ZELTarkaSDK/Camera.h>
#include <gmock/gmock.h>

#include <string>

#include "tests/platform/linux/waiting.h"
#include "tests/simulator/simulated_bus.h"

namespace zel::test {

// A simulated camera on a bus of its own, and the camera object that a host opens there: real threads and sockets.
class BusCamera : public SimulatedBus {
 protected:
  CameraOptions options() const {
    CameraOptions options;
    options.accessoriesFolder = folder_.path();
    options.openTimeLimit = options.timeLimit = kLimit;
    options.warn = [](const std::string&) {};
    return options;
  }
  Camera opened() { return *Camera::open(options()).get(); }
};

}  // namespace zel::test

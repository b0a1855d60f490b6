#pragma once

#include <memory>
#include <string>
#include <utility>

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include "link/camera_data_parser.h"
#include "link/camera_session.h"
#include "simulator/camera_simulator.h"
#include "tests/platform/linux/bus_fixture.h"

namespace zel::test {

// Stacks and simulated cameras on a bus of their own: real threads, sockets and files. The test is the main thread.
class SimulatorFixture : public BusFixture {
 protected:
  // A camera that answers; it is plugged in. video: a file that it shows.
  std::unique_ptr<simulator::CameraSimulator> makeCamera(const std::string& serial, simulator::Faults faults = {},
                                                         const std::string& video = {}) {
    simulator::SimulatorOptions options;
    options.accessoriesFolder = folder_.path();
    options.identity.serial = serial;
    options.video = video;
    options.faults = std::move(faults);
    options.warn = [](const std::string&) {};
    auto camera = std::make_unique<simulator::CameraSimulator>(std::move(options));
    std::string error;
    EXPECT_TRUE(camera->start(error)) << error;
    return camera;
  }

  bool reaches(CameraStack& stack, std::uint64_t status) {
    return runUntil([&] { return stack.accessory().status() == status; });
  }

  // Waits for the camera's frames. The marker is asked for at once, and not by the first tick of the detect timer.
  bool framesArrive(CameraStack& stack) {
    if (!runUntil([&] { return stack.accessory().status() != 0; })) return false;
    stack.parser().sendSyncData();
    return reaches(stack, 2);
  }
};

}  // namespace zel::test

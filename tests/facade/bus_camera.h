#pragma once

#include <ZELTarkaSDK/Camera.h>
#include <gmock/gmock.h>

#include <memory>
#include <string>

#include "simulator/camera_simulator.h"
#include "tests/platform/linux/temporary_folder.h"
#include "tests/platform/linux/waiting.h"

namespace zel::test {

// A simulated camera on a bus of its own, and the camera object that a host opens there: real threads and sockets.
class BusCamera : public ::testing::Test {
 protected:
  void attach(simulator::Faults faults = {}, const std::string& serial = "E1A0001") {
    simulator::SimulatorOptions options;
    options.accessoriesFolder = folder_.path();
    options.identity.serial = serial;
    options.faults = std::move(faults);
    options.warn = [](const std::string&) {};
    simulators_.push_back(std::make_unique<simulator::CameraSimulator>(std::move(options)));
    std::string error;
    ASSERT_TRUE(simulators_.back()->start(error)) << error;
  }
  simulator::CameraSimulator& simulated() { return *simulators_.front(); }

  CameraOptions options() const {
    CameraOptions options;
    options.accessoriesFolder = folder_.path();
    options.openTimeLimit = options.timeLimit = kLimit;
    options.warn = [](const std::string&) {};
    return options;
  }
  Camera opened() { return *Camera::open(options()).get(); }

  TemporaryFolder folder_;
  std::vector<std::unique_ptr<simulator::CameraSimulator>> simulators_;
};

}  // namespace zel::test

#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "simulator/camera_simulator.h"
#include "tests/platform/linux/temporary_folder.h"

namespace zel::test {

// A bus of its own, to which simulated cameras are attached in this process.
class SimulatedBus : public ::testing::Test {
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
  // The first of them.
  simulator::CameraSimulator& simulated() { return *simulators_.front(); }

  TemporaryFolder folder_;
  std::vector<std::unique_ptr<simulator::CameraSimulator>> simulators_;
};

}  // namespace zel::test

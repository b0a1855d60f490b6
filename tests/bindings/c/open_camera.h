#pragma once

#include <ZELTarkaSDK/zel.h>
#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/facade/bus_camera.h"

namespace zel::test {

struct How {
  simulator::Faults faults = {};
  bool isDispatched = false;
};

// A simulated camera that a program in C has open.
class OpenCamera : public BusCamera {
 protected:
  ~OpenCamera() override {
    for (zel_camera* const one : cameras_) zel_close(one);
  }

  zel_options options(const How& how) const {
    zel_options options{};
    options.size = sizeof options;
    options.accessories_folder = folder_.path().c_str();
    options.open_time_limit = options.time_limit = options.transfer_time_limit = 30'000;
    options.dispatch = how.isDispatched ? 1 : 0;
    options.log = [](void*, const char*) {};
    return options;
  }

  // With a camera that is attached before.
  zel_camera* open(const How& how = {}) {
    if (simulators_.empty()) attach(how.faults);
    const zel_options with = options(how);
    zel_error error{};
    error.size = sizeof error;
    zel_camera* camera = nullptr;
    EXPECT_EQ(zel_open(&with, &camera, &error), ZEL_OK) << error.message;
    cameras_.push_back(camera);
    return camera;
  }

  void tell(const std::string& line) {
    std::string error;
    EXPECT_TRUE(simulated().tell(line, error)) << error;
  }

 private:
  std::vector<zel_camera*> cameras_;
};

}  // namespace zel::test

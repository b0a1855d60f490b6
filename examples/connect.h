#pragma once

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <iostream>
#include <memory>
#include <string>

// Prints why a program ends, and is its exit status.
inline int fail(const std::string& why) {
  std::cerr << why << '\n';
  return 1;
}

// Opens the camera and waits until its frames arrive; connect_and_print_status.cc shows the steps.
// Errors: false, and prints why, when no camera is attached or it sends nothing for ten seconds.
// Thread: main thread, whose main queue it runs.
inline bool connect(zel::LinuxPlatform& platform, ZELCameraAccessory& accessory) {
  const auto watch = accessory.observeStatus([&](std::uint64_t status) {
    if (zel::LinkStatus{status} == zel::LinkStatus::flowing) platform.stopMainQueue();
  });
  if (!accessory.openCamera()) return std::cerr << "no camera is attached\n", false;
  if (!platform.runMainQueueFor(10)) return std::cerr << "the camera sends nothing\n", false;
  return true;
}

// The platform on the accessory folder of the environment.
// Errors: null, and prints why.
inline std::unique_ptr<zel::LinuxPlatform> makePlatform() {
  std::string fault;
  auto platform = zel::LinuxPlatform::create({}, fault);
  if (!platform) std::cerr << fault << '\n';
  return platform;
}

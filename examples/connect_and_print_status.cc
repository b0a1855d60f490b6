// Connects to the camera and prints its description.
//
//   connect_and_print_status

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <iostream>

namespace {

int fail(const std::string& why) {
  std::cerr << why << '\n';
  return 1;
}

}  // namespace

int main() {
  std::string fault;
  const auto platform = zel::LinuxPlatform::create({}, fault);
  if (!platform) return fail(fault);

  zel::CameraStack stack(platform->ports());
  ZELCameraAccessory& accessory = stack.accessory();
  const auto watch = accessory.observeStatus([&](std::uint64_t status) {
    std::cout << "status " << status << std::endl;
    if (zel::LinkStatus{status} == zel::LinkStatus::flowing) platform->stopMainQueue();
  });
  const auto camera = accessory.openCamera();
  if (!camera) return fail("no camera is attached");
  std::cout << camera->name() << ", serial " << camera->serialNumber() << ", firmware " << camera->firmwareRevision()
            << std::endl;
  if (!platform->runMainQueueFor(10)) return fail("the camera sends nothing");

  bool answered = false;
  stack.ucd().msgReqBatteryWithRebackBlock([&](const auto& error, std::uint8_t powerType, std::uint8_t level) {
    answered = !error;
    std::cout << "power type " << +powerType << ", battery " << +level << " %\n";
    platform->stopMainQueue();
  });
  if (!platform->runMainQueueFor(10) || !answered) return fail("the camera did not tell its battery");
  std::cout << "clock offset " << accessory.timeOffset() << " ms, round trip " << accessory.syncRoundTrip() << " ms\n";
}

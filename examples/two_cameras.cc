// Drives two cameras at once, each with its own stack, and prints what both have sent after two seconds.
//
//   two_cameras SERIAL SERIAL

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/PreviewFormat.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <array>
#include <string>

#include "connect.h"

namespace {

struct Camera {
  Camera(zel::LinuxPlatform& platform, const std::string& cameraSerial)
      : serial(cameraSerial), stack(platform.ports(), cameraSerial) {}

  // Asks for the battery and the preview at the same time.
  void ask(const std::function<void()>& answered) {
    stack.ucd().msgReqBatteryWithRebackBlock([this, answered](const auto& error, std::uint8_t, std::uint8_t level) {
      if (!error) battery = level;
      answered();
    });
    stack.ucd().msgCmdStartVideoWithVideoRes(zel::kSmallestPreview, {});
  }

  const std::string serial;
  int battery = -1;
  zel::CameraStack stack;
};

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return std::cerr << "usage: two_cameras SERIAL SERIAL\n", 1;
  const auto platform = makePlatform();
  if (!platform) return 1;
  std::array<Camera, 2> cameras{Camera(*platform, arguments[1]), Camera(*platform, arguments[2])};
  for (Camera& camera : cameras) {
    if (!connect(*platform, camera.stack.accessory()))
      return std::cerr << "that was serial " << camera.serial << '\n', 1;
  }
  int answers = 0;
  for (Camera& camera : cameras) {
    camera.ask([&] {
      if (++answers == 2) platform->stopMainQueue();
    });
  }
  if (!platform->runMainQueueFor(10)) return std::cerr << "a camera does not answer\n", 1;
  platform->runMainQueueFor(2);
  for (Camera& camera : cameras) {
    const zel::LinkStatistics seen = camera.stack.statistics();
    std::cout << camera.serial << ": battery " << camera.battery << " %, "
              << seen.frames[static_cast<std::size_t>(zel::FrameType::previewVideo)] << " video frames, "
              << seen.bytesReceived << " bytes\n";
  }
}

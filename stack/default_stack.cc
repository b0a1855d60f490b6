// The only file that knows of the process-wide stack.

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraManager.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELDateFormatter.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <ZELTarkaSDK/ZELThumbnailRender.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "platform/ports.h"
#include "transport/camera_data_parser.h"

namespace zel {
namespace {

std::atomic<const platform::Ports*> defaultPorts = nullptr;
std::atomic<bool> stackMade = false;

[[noreturn]] void misused(const char* what) {
  std::fprintf(stderr, "ZELTarkaSDK: %s\n", what);
  std::abort();
}

CameraStack* makeProcessStack() {
  const platform::Ports* ports = defaultPorts.load();
  if (ports == nullptr) misused("call setDefaultPorts() before the first class operation");
  stackMade.store(true);
  return new CameraStack(*ports);
}

}  // namespace

void setDefaultPorts(const platform::Ports& ports) {
  if (stackMade.load()) misused("setDefaultPorts() comes too late: a class operation has been used already");
  delete defaultPorts.exchange(new platform::Ports(ports));
}

// Never destroyed: session threads and the host's statics may still use it while the process ends.
CameraStack& processStack() {
  static CameraStack* const stack = makeProcessStack();
  return *stack;
}

}  // namespace zel

ZELCameraAccessory& ZELCameraAccessory::defaultCamera() { return zel::processStack().accessory(); }
CameraDataParser& CameraDataParser::shareCameraDataParser() { return zel::processStack().parser(); }
ZELCameraUCD& ZELCameraUCD::defaultCameraUCD() { return zel::processStack().ucd(); }
ZELCameraManager& ZELCameraManager::sharedManager() { return zel::processStack().manager(); }
std::shared_ptr<ZELPreviewPlayer> ZELPreviewPlayer::suitablePreviewPlayer() {
  return zel::processStack().suitablePreviewPlayer();
}
std::unique_ptr<ZELThumbnailRender> ZELThumbnailRender::initWithRenderWidth(std::int32_t width, std::int32_t height) {
  return initWithRenderWidth(zel::processStack().ports(), width, height);
}
ZELLiveDataSource::Source ZELLiveDataSource::initWitCameraResolution(Number resolution, Number stitchWidth,
                                                                     Number stitchHeight, Number bitrate) {
  return initWitCameraResolution(zel::processStack(), resolution, stitchWidth, stitchHeight, bitrate);
}
ZELDateFormatter& ZELDateFormatter::defaultFormatter() {
  static auto* const formatter = new ZELDateFormatter(zel::processStack().ports());
  return *formatter;
}

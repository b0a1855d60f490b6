// The process-wide stack. No other file uses it.

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraManager.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELDateFormatter.h>
#include <ZELTarkaSDK/ZELLiveDataSource.h>
#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <ZELTarkaSDK/ZELThumbnailRender.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>

#include <ZELTarkaSDK/platform/ports.h>

#include "base/mutex.h"
#include "link/camera_data_parser.h"
#include "link/zel_camera_data_writer.h"

namespace zel {
namespace {

std::atomic<const platform::Ports*> defaultPorts = nullptr;
std::atomic<bool> stackMade = false;

[[noreturn]] void misused(const char* what) {
  std::fprintf(stderr, "ZELTarkaSDK: %s\n", what);
  std::abort();
}

// The clock of the default ports. Before they are set, a host may already log: the time is then the system's, in UTC.
class DefaultClock final : public platform::Clock {
 public:
  double absoluteTime() const override {
    constexpr std::chrono::sys_days kEpoch = std::chrono::January / 1 / 2001;
    if (const auto* ports = defaultPorts.load()) return ports->clock.absoluteTime();
    return std::chrono::duration<double>(std::chrono::system_clock::now() - kEpoch).count();
  }
  void sleepFor(double seconds) override {
    if (const auto* ports = defaultPorts.load()) ports->clock.sleepFor(seconds);
  }
  std::int64_t localTimeOffset(double absoluteTime) const override {
    const auto* ports = defaultPorts.load();
    return ports != nullptr ? ports->clock.localTimeOffset(absoluteTime) : 0;
  }
};

CameraStack* makeProcessStack() {
  const platform::Ports* ports = defaultPorts.load();
  if (ports == nullptr) misused("call setDefaultPorts() before the first class operation");
  stackMade.store(true);
  return new CameraStack(*ports);
}

}  // namespace

void setDefaultPorts(const platform::Ports& ports) {
  if (stackMade.load()) misused("setDefaultPorts() comes too late: a class operation has been used already");
  // Replaced ports are kept, because another thread may still be writing a log line with them.
  static Mutex mutex;
  static auto* const named = new std::deque<platform::Ports>();
  const MutexLock lock(mutex);
  named->push_back(ports);
  defaultPorts.store(&named->back());
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
ZELCameraDataWriter& ZELCameraDataWriter::defaultWriter() {
  static auto* const writer = new ZELCameraDataWriter();
  return *writer;
}
// Needs no stack: a host may log before anything else.
ZELDateFormatter& ZELDateFormatter::defaultFormatter() {
  static auto* const formatter = new ZELDateFormatter(*new zel::DefaultClock(), []() -> std::string {
    const auto* ports = zel::defaultPorts.load();
    return ports != nullptr ? logFileOf(*ports) : std::string();
  });
  return *formatter;
}

#pragma once

#include <ZELTarkaSDK/LinuxMedia.h>
#include <ZELTarkaSDK/LinuxPlatform.h>

#include <memory>
#include <optional>
#include <string>

#include <ZELTarkaSDK/platform/ports.h>

#include "apps/zelcam/command_line/settings.h"
#include "base/shared_value.h"

namespace zel::app {

// The accessory bus for one command. While it exists, Ctrl-C stops its main queue.
class Bus {
 public:
  // If the folder is unusable, prints why on standard error; isThere() is then false.
  // decoderThreads: see LinuxMedia.
  explicit Bus(const Settings& settings, int decoderThreads = 1);
  ~Bus();
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;

  bool isThere() const { return platform_ != nullptr; }
  LinuxPlatform& platform() { return *platform_; }
  // The platform's ports with this program's codecs and renderers. Faults of the stitcher are printed on standard
  // error.
  platform::Ports ports();
  // Ports made from now on have no decoder, for pass-through streaming.
  void decodeNothing() { decodes_ = false; }

  // Who uses the camera, in words, if opening one has failed for that reason since the last call. The main queue is
  // stopped when that happens.
  std::optional<std::string> cameraInUse() { return inUse_.set(std::nullopt); }

 private:
  void noteInUse(const CameraInUse& camera);

  bool decodes_ = true;
  Guarded<std::optional<std::string>> inUse_;
  // Created after the platform, and destroyed after its threads, which decode.
  std::unique_ptr<LinuxMedia> media_;
  std::unique_ptr<LinuxPlatform> platform_;
};

}  // namespace zel::app

#pragma once

#include <chrono>
#include <memory>
#include <optional>

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/platform/run_loop.h>

#include "apps/zelcam/command_line/settings.h"

namespace zel::app {

// Reopens a camera whose link does not recover by itself: attached but not connected, or connected but silent. The
// first attempt is made after a second, each further one after twice the delay, at most 4 s, until frames arrive.
//
// Owner:  the arguments must outlive the object.
// Thread: main thread, while its main queue runs.
class LinkKeeper {
 public:
  LinkKeeper(LinuxPlatform& platform, const Settings& settings, ZELCameraAccessory& accessory);

 private:
  using Clock = std::chrono::steady_clock;

  void look();
  bool isBroken() const;

  LinuxPlatform& platform_;
  const Settings& settings_;
  ZELCameraAccessory& accessory_;
  std::optional<Clock::time_point> brokenSince_;
  Clock::duration pause_;
  const std::unique_ptr<platform::Timer> timer_;
};

}  // namespace zel::app

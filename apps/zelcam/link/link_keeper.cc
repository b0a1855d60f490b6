#include "apps/zelcam/link/link_keeper.h"

#include <algorithm>

#include <ZELTarkaSDK/platform/ports.h>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/link/camera_choice.h"

namespace zel::app {
namespace {

constexpr double kLookPeriod = 0.25;  // seconds
constexpr std::chrono::seconds kFirstPause{1};
constexpr std::chrono::seconds kLongestPause{4};

}  // namespace

LinkKeeper::LinkKeeper(LinuxPlatform& platform, const Settings& settings, ZELCameraAccessory& accessory)
    : platform_(platform),
      settings_(settings),
      accessory_(accessory),
      pause_(kFirstPause),
      timer_(platform.ports().threads.currentRunLoop().scheduleRepeating(kLookPeriod, [this] { look(); })) {}

void LinkKeeper::look() {
  const Clock::time_point now = Clock::now();
  if (accessory_.linkStatus() == LinkStatus::flowing) pause_ = kFirstPause;
  if (!isBroken()) return brokenSince_.reset();
  if (!brokenSince_) brokenSince_ = now;
  if (now - *brokenSince_ < pause_) return;
  brokenSince_.reset();
  pause_ = std::min<Clock::duration>(2 * pause_, kLongestPause);
  if (settings_.verbose) say("zelcam: the link does not heal by itself; opening the camera again");
  accessory_.openCamera();
}

// A session that was opened a moment ago is open and is given its time; it becomes silent after that.
bool LinkKeeper::isBroken() const {
  const LinkStatus status = accessory_.linkStatus();
  if (status != LinkStatus::closed) return status == LinkStatus::silent;
  return !chosenAccessories(platform_.ports(), settings_).empty();
}

}  // namespace zel::app

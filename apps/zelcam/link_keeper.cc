#include "apps/zelcam/link_keeper.h"

#include <algorithm>

#include <ZELTarkaSDK/platform/ports.h>
#include "apps/zelcam/camera_choice.h"
#include "apps/zelcam/output.h"

namespace zel::app {
namespace {

constexpr double kLookPeriod = 0.25;  // seconds
constexpr std::chrono::seconds kFirstPause{1};
constexpr std::chrono::seconds kLongestPause{4};
constexpr std::uint64_t kNoLink = 0, kLinkFlows = 2, kLinkIsSilent = 3;

}  // namespace

LinkKeeper::LinkKeeper(LinuxPlatform& platform, const Settings& settings, ZELCameraAccessory& accessory)
    : platform_(platform),
      settings_(settings),
      accessory_(accessory),
      pause_(kFirstPause),
      timer_(platform.ports().threads.currentRunLoop().scheduleRepeating(kLookPeriod, [this] { look(); })) {}

void LinkKeeper::look() {
  const Clock::time_point now = Clock::now();
  if (accessory_.status() == kLinkFlows) pause_ = kFirstPause;
  if (!isBroken()) return brokenSince_.reset();
  if (!brokenSince_) brokenSince_ = now;
  if (now - *brokenSince_ < pause_) return;
  brokenSince_.reset();
  pause_ = std::min<Clock::duration>(2 * pause_, kLongestPause);
  if (settings_.verbose) say("zelcam: the link does not heal by itself; opening the camera again");
  accessory_.openCamera();
}

// A new session has status 1 until its own timeout, after which it counts as silent.
bool LinkKeeper::isBroken() const {
  const std::uint64_t status = accessory_.status();
  if (status != kNoLink) return status == kLinkIsSilent;
  return !chosenAccessories(platform_, settings_).empty();
}

}  // namespace zel::app

#pragma once

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELError.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "apps/zelcam/command_line/settings.h"
#include "apps/zelcam/link/answer.h"
#include "apps/zelcam/link/bus.h"

namespace zel::app {

// How the wait for something that the camera shall do ended.
enum class Waited { done, timeOut, lost, interrupted };

// Tells in words how `what` ended where it did not end well, and returns the exit status: kDone for done without an
// error.
int tellEnd(std::string_view what, Waited end, const std::optional<ZELError>& error, const Settings& settings);

// What has become of a link whose frames had arrived.
enum class LinkLoss {
  none,
  silent,  // frames have stopped; the next one ends that
  gone,    // the connection has ended
};

// The camera of one command: opened, waited for, and closed when the command ends.
// Thread: main thread, whose main queue it runs while it waits; wake() on any.
class CameraLink {
 public:
  CameraLink(Bus& bus, const Settings& settings);

  CameraStack& stack() { return stack_; }
  Bus& bus() { return bus_; }
  LinuxPlatform& platform() { return platform_; }

  // Opens the camera and waits until frames arrive, at most the time-out; a link that does not heal by itself is opened
  // again. Returns kDone then; otherwise says what is missing, or at once who else has the camera, and returns the exit
  // status.
  int open();

  // Waits until `done` holds. It is looked at on the main thread, again after each wake(). Without seconds it waits for
  // good. A loss ends it, unless `bears` holds for it.
  Waited waitFor(const std::function<bool()>& done, std::optional<double> seconds,
                 const std::function<bool(LinkLoss)>& bears = {});
  void wake();

  // Whether the camera is gone or silent: what failed then, failed for want of a camera.
  bool isLost();

  // Whether the session has been opened again by itself, after a stream error, since frames arrived. The camera may
  // have forgotten what it was asked for.
  bool wasReopened() const { return reopened_.load(); }

  // Waits for the answer. Returns kDone where it is a good one; otherwise says how `what` ended, and returns the exit
  // status.
  template <class... Values>
  int waitForAnswer(std::string_view what, const Answer<Values...>& answer) {
    const Waited end = waitFor([&answer] { return answer.done; }, settings_.timeout);
    return tellEnd(what, end, answer.error, settings_);
  }

  // Where people want to know more: that the camera is there and was asked.
  void sayAsked() const;

 private:
  void statusChanged(LinkStatus status);
  LinkLoss loss();

  Bus& bus_;
  LinuxPlatform& platform_;
  const Settings& settings_;
  std::atomic<bool> framesArrived_ = false;
  std::atomic<bool> lost_ = false;
  std::atomic<bool> reopened_ = false;
  CameraStack stack_;
  const Observation watch_;
};

// Opens a camera for a command, and runs it. Returns its exit status, or why there is no camera. decoderThreads: see
// LinuxMedia.
int withCamera(const Settings& settings, const std::function<int(CameraLink&)>& command, int decoderThreads = 1);

// Says what is missing for frames to arrive within the time-out, and returns the exit status.
int sayNoFrames(LinuxPlatform& platform, const Settings& settings, CameraStack& stack);

}  // namespace zel::app

#pragma once

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELError.h>

#include <atomic>
#include <functional>
#include <optional>
#include <string_view>

#include "apps/zelcam/command_line/settings.h"
#include "apps/zelcam/link/answer.h"
#include "apps/zelcam/link/bus.h"

namespace zel::app {

// The result of a wait for the camera.
enum class Waited { done, timeOut, lost, interrupted };

// Prints how `what` failed, if it did, and returns the exit status: kDone for done without an error.
int tellEnd(std::string_view what, Waited end, const std::optional<ZELError>& error, const Settings& settings);

// The state of a link after its frames had arrived.
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

  // Opens the camera and waits until frames arrive, at most for the timeout. A link that does not recover by itself is
  // opened again. Returns kDone on success. Otherwise prints what is missing, or at once who uses the camera, and
  // returns the exit status.
  int open();

  // Waits until `done` returns true. Calls it on the main thread, again after each wake(). Without seconds it waits
  // without a limit. A loss of the link ends the wait, unless `bears` returns true for it.
  Waited waitFor(const std::function<bool()>& done, std::optional<double> seconds,
                 const std::function<bool(LinkLoss)>& bears = {});
  void wake() { platform_.stopMainQueue(); }

  // Whether the camera is gone or silent: an error at that time is due to the lost camera.
  bool isLost() { return lost_.load() || stack_.accessory().linkStatus() != LinkStatus::flowing; }

  // Whether the session was reopened automatically, after a stream error, since frames arrived. The camera may have
  // lost earlier requests.
  bool wasReopened() const { return reopened_.load(); }

  // Waits for the reply. Returns kDone on success; otherwise prints how `what` failed, and returns the exit status.
  template <class... Values>
  int waitForAnswer(std::string_view what, const Answer<Values...>& answer) {
    const Waited end = waitFor([&answer] { return answer.done; }, settings_.timeout);
    return tellEnd(what, end, answer.error, settings_);
  }

  // With --verbose: prints that the camera is attached and the request was sent.
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

// Opens a camera for a command, and runs the command. Returns its exit status, or that of the failed opening.
// decoderThreads: see LinuxMedia.
int withCamera(const Settings& settings, const std::function<int(CameraLink&)>& command, int decoderThreads = 1);

// Prints why no frames arrived within the timeout, and returns the exit status.
int sayNoFrames(LinuxPlatform& platform, const Settings& settings, CameraStack& stack);

// Requests the camera's lens offset as text, and waits for the reply. what: the command's name, for people. typeInfo:
// the camera's code for the offset's use.
// Returns kDone; otherwise prints what is wrong and returns the exit status.
int askLensOffset(CameraLink& link, std::string_view what, std::uint8_t typeInfo, std::string& offset);

}  // namespace zel::app

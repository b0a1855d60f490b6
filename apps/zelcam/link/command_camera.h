#pragma once

#include <ZELTarkaSDK/Camera.h>
#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/Observation.h>
#include <ZELTarkaSDK/ZELError.h>

#include <functional>
#include <optional>
#include <string_view>

#include "apps/zelcam/command_line/settings.h"

namespace zel::app {

// Far more than a camera's preview and its answers need. A frame of 256 MiB would take five times as much until it is
// shown.
inline constexpr ReceiveLimits kReceiveLimits{.frame = 8u << 20, .unit = 8 << 20};

// The camera of one command: closed when the command ends.
class CommandCamera {
 public:
  // What a command's camera needs beyond the settings.
  struct Needs {
    int decoderThreads = 1;  // see CameraOptions
    bool keepsLink = false;
    bool staysWithCamera = false;
  };

  // If the folder of the bus is unusable, prints why on standard error; isThere() is then false.
  CommandCamera(const Settings& settings, const Needs& needs);

  bool isThere() const { return camera_.has_value(); }
  Camera& camera() { return *camera_; }

  // Waits until frames arrive, at most for the timeout. Returns kDone on success. Otherwise prints what is missing, or
  // at once who uses the camera, and returns the exit status. settings: those of the command, with another timeout or a
  // chosen camera after a loss.
  int connect(const Settings& settings);

 private:
  int sayNoFrames(const Settings& settings);

  std::optional<Camera> camera_;
  Observation notes_;  // of the link's states, in the log
};

// Opens a camera for a command, and runs the command. Returns its exit status, or that of the failed opening.
int withCamera(const Settings& settings, const std::function<int(Camera&)>& command,
               const CommandCamera::Needs& needs = {});

// The time limit of a request, and its end by Ctrl-C.
RequestOptions limitsOf(const Settings& settings);

// Prints how `what` failed, and returns the exit status.
int tellFailure(std::string_view what, const CameraError& error, const Settings& settings);
int tellFailure(std::string_view what, const ZELError& error);

// With --verbose: prints that the camera is attached and the request was sent.
void sayAsked(const Settings& settings);

}  // namespace zel::app

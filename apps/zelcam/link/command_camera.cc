#include "apps/zelcam/link/command_camera.h"

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <string>

#include <ZELTarkaSDK/platform/ports.h>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/diagnostics.h"
#include "apps/zelcam/host/interrupt.h"
#include "apps/zelcam/link/bus.h"
#include "apps/zelcam/link/camera_choice.h"
#include "base/has_memory_for.h"
#include "gateway/json/failure.h"

namespace zel::app {
namespace {

using Reason = CameraError::Reason;
using std::chrono::milliseconds;

// Above zero, which would be the camera's own limit.
milliseconds timeoutOf(const Settings& settings) {
  const std::chrono::duration<double> seconds(settings.timeout);
  return std::max(milliseconds(1), std::chrono::duration_cast<milliseconds>(seconds));
}

void sayAfterOurName(const std::string& line) { say("zelcam: " + line); }

CameraOptions optionsOf(const Settings& settings, const CommandCamera::Needs& needs) {
  CameraOptions options;
  options.serialNumber = settings.camera;
  options.openTimeLimit = options.timeLimit = options.transferTimeLimit = timeoutOf(settings);
  options.keepsLink = needs.keepsLink;
  options.staysWithCamera = needs.staysWithCamera;
  if (settings.verbose) options.tell = sayAfterOurName;
  options.accessoriesFolder = settings.accessories;
  options.direct = settings.direct;
  options.program = "zelcam " + settings.command;
  options.decoderThreads = needs.decoderThreads;
  options.warn = say;
  options.warnOfPictures = sayAfterOurName;
  return options;
}

// Prints it, unless the user has asked for it, and returns the exit status.
int tell(const gateway::Failure& failure) {
  if (failure.kind != gateway::Failure::Kind::cancelled) sayFailure(failure.message, failure.error);
  return gateway::exitStatusOf(failure.kind);
}

}  // namespace

CommandCamera::CommandCamera(const Settings& settings, const Needs& needs) {
  hearInterrupts();
  auto made = Camera::create(optionsOf(settings, needs));
  if (!made) {
    sayFailure(made.error().message);
    return;
  }
  if (settings.verbose) sayBus(settings);
  camera_.emplace(*std::move(made));
  camera_->stack().setReceiveLimits(kReceiveLimits);
  notes_ = camera_->stack().accessory().observeStatus(
      [](std::uint64_t status) { ifMemoryAllows([status] { noteStatus(LinkStatus{status}); }); });
}

int CommandCamera::connect(const Settings& settings) {
  const auto connected = camera_->connect(limitsOf(settings)).get();
  if (connected) {
    if (const auto info = camera_->info()) sayUsedCamera(camera_->stack().ports(), settings, info->serialNumber());
    return kDone;
  }
  if (connected.error().reason == Reason::cancelled) return kInterrupted;
  if (connected.error().reason != Reason::inUse) return sayNoFrames(settings);
  sayFailure(connected.error().message);
  return kNoCamera;
}

int CommandCamera::sayNoFrames(const Settings& settings) {
  if (!settings.camera.empty() && chosenAccessories(camera_->stack().ports(), settings).empty()) {
    sayUnknownCamera(camera_->stack().ports(), settings);
  } else if (camera_->info()) {
    sayFailure(fmt::format("the camera is attached but sent no frame within {} s", settings.timeout));
  } else {
    sayFailure(fmt::format("no camera was attached within {} s; looked in {}, where zelcam-sim would attach one",
                           settings.timeout, LinuxPlatform::accessoriesFolder(settings.accessories)));
  }
  return kNoCamera;
}

int withCamera(const Settings& settings, const std::function<int(Camera&)>& command,
               const CommandCamera::Needs& needs) {
  CommandCamera camera(settings, needs);
  if (!camera.isThere()) return kNoCamera;
  const int status = camera.connect(settings);
  return status == kDone ? command(camera.camera()) : status;
}

RequestOptions limitsOf(const Settings& settings) { return {.timeLimit = timeoutOf(settings), .stop = interruption()}; }

int tellFailure(std::string_view what, const CameraError& error, const Settings& settings) {
  return tell(gateway::failureOf(what, error, settings.timeout));
}

int tellFailure(std::string_view what, const ZELError& error) { return tell(gateway::failureOf(what, error)); }

void sayAsked(const Settings& settings) {
  if (settings.verbose) say("zelcam: the request is on its way");
}

}  // namespace zel::app

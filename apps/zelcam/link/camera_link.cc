#include "apps/zelcam/link/camera_link.h"

#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/ZELCameraManager.h>

#include <fmt/format.h>

#include <chrono>

#include "apps/zelcam/host/console.h"
#include "apps/zelcam/host/diagnostics.h"
#include "apps/zelcam/host/interrupt.h"
#include "apps/zelcam/link/camera_choice.h"
#include "apps/zelcam/link/command_camera.h"
#include "apps/zelcam/link/link_keeper.h"
#include "base/has_memory_for.h"

namespace zel::app {
namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

CameraLink::CameraLink(Bus& bus, const Settings& settings)
    : bus_(bus),
      platform_(bus.platform()),
      settings_(settings),
      stack_(bus.ports(), settings.camera),
      watch_(stack_.accessory().observeStatus([this](std::uint64_t status) { statusChanged(LinkStatus{status}); })) {
  stack_.setReceiveLimits(kReceiveLimits);
}

void CameraLink::statusChanged(LinkStatus status) {
  ifMemoryAllows([status] { noteStatus(status); });
  if (status == LinkStatus::flowing) framesArrived_.store(true);
  if (status == LinkStatus::closed && framesArrived_.load()) lost_.store(true);
  if (status == LinkStatus::open && framesArrived_.load()) reopened_.store(true);
  wake();
}

int CameraLink::open() {
  bus_.cameraInUse();  // of an earlier opening
  stack_.accessory().openCamera();
  const LinkKeeper keeper(platform_, settings_, stack_.accessory());
  std::optional<std::string> inUse;
  const auto isOver = [&] {
    if (!inUse && !stack_.accessory().accessoryInfo()) inUse = bus_.cameraInUse();  // and no other one was opened
    return framesArrived_.load() || inUse;
  };
  const Waited end = waitFor(isOver, settings_.timeout);
  if (end == Waited::interrupted) return kInterrupted;
  if (framesArrived_.load()) {
    if (const auto info = stack_.accessory().accessoryInfo())
      sayUsedCamera(platform_.ports(), settings_, info->serialNumber());
    return kDone;
  }
  if (!inUse) return sayNoFrames(platform_, settings_, stack_);
  sayFailure(*inUse);
  return kNoCamera;
}

LinkLoss CameraLink::loss() {
  if (!framesArrived_.load()) return LinkLoss::none;
  if (lost_.load()) return LinkLoss::gone;
  return stack_.accessory().linkStatus() == LinkStatus::silent ? LinkLoss::silent : LinkLoss::none;
}

Waited CameraLink::waitFor(const std::function<bool()>& done, std::optional<double> seconds,
                           const std::function<bool(LinkLoss)>& bears) {
  const auto start = Clock::now();
  while (!done()) {
    if (wasInterrupted()) return Waited::interrupted;
    const LinkLoss now = loss();
    if (now != LinkLoss::none && !(bears && bears(now))) {
      platform_.drainMainQueue();  // what failed with the connection tells so itself
      return done() ? Waited::done : Waited::lost;
    }
    if (!seconds) {
      platform_.runMainQueue();
      continue;
    }
    const double left = *seconds - std::chrono::duration<double>(Clock::now() - start).count();
    if (left <= 0) return Waited::timeOut;
    platform_.runMainQueueFor(left);
  }
  return Waited::done;
}

void CameraLink::sayAsked() const {
  if (settings_.verbose) say("zelcam: the request is on its way");
}

int withCamera(const Settings& settings, const std::function<int(CameraLink&)>& command, int decoderThreads) {
  Bus bus(settings, decoderThreads);
  if (!bus.isThere()) return kNoCamera;
  CameraLink link(bus, settings);
  const int status = link.open();
  return status == kDone ? command(link) : status;
}

int sayNoFrames(LinuxPlatform& platform, const Settings& settings, CameraStack& stack) {
  if (!settings.camera.empty() && chosenAccessories(platform.ports(), settings).empty()) {
    sayUnknownCamera(platform.ports(), settings);
  } else if (stack.accessory().accessoryInfo()) {
    sayFailure(fmt::format("the camera is attached but sent no frame within {} s", settings.timeout));
  } else {
    sayFailure(fmt::format("no camera was attached within {} s; looked in {}, where zelcam-sim would attach one",
                           settings.timeout, LinuxPlatform::accessoriesFolder(settings.accessories)));
  }
  return kNoCamera;
}

int askLensOffset(CameraLink& link, std::string_view what, std::uint8_t typeInfo, std::string& offset) {
  const auto answer = std::make_shared<Answer<std::optional<std::string>>>();
  link.stack().manager().getCameraMediaOffset(typeInfo, keepIn(answer, link.platform()));
  const int status = link.waitForAnswer(fmt::format("{}: the lens offset", what), *answer);
  offset = std::get<0>(answer->values).value_or("");
  return status;
}

int tellEnd(std::string_view what, Waited end, const std::optional<ZELError>& error, const Settings& settings) {
  if (end == Waited::interrupted) return kInterrupted;
  if (end == Waited::lost || (error && error->code == kZELErrorNotConnected)) {
    sayFailure(fmt::format("{}: the camera was lost", what), zelOSStatusError(kZELErrorNotConnected));
    return kNoCamera;
  }
  if (end == Waited::timeOut) {
    sayFailure(fmt::format("{}: the camera did not answer within {} s", what, settings.timeout));
    return kNoCamera;
  }
  if (!error) return kDone;
  if (error->code == kZELErrorOldFirmware) {
    sayFailure(fmt::format("{}: the camera's firmware is too old ({} {})", what, error->domain, error->code), error);
  } else {
    sayFailure(fmt::format("{}: the camera refused ({} {})", what, error->domain, error->code), error);
  }
  return kRefused;
}

}  // namespace zel::app

#include "gateway/cameras/held_camera.h"

#include <ZELTarkaSDK/CameraStack.h>
#include <ZELTarkaSDK/ZELCameraNotificationProtocol.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>

#include <chrono>
#include <utility>

#include "base/has_memory_for.h"
#include "gateway/json/event_json.h"
#include "gateway/json/json_line.h"

namespace zel::gateway {
namespace {

constexpr std::chrono::seconds kStatisticsPeriod{1};
constexpr std::chrono::hours kPatience{1};  // of one wait for the camera; the next one follows at once

std::int64_t unixMicroseconds() {
  using std::chrono::microseconds;
  return std::chrono::duration_cast<microseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::uint64_t droppedFrames(const DroppedFrames& dropped) {
  return dropped.unknownType + dropped.noConsumer + dropped.unregisteredCode + dropped.shortMessage +
         dropped.unregisteredData + dropped.shortTimestamp + dropped.timestampOldFirmware + dropped.noMemory;
}

}  // namespace

// Takes the camera's events from its classes, since they are shown under the interface's own keys.
class HeldCamera::Receiver final : public ZELCameraNotificationProtocol {
 public:
  explicit Receiver(Notices& notices) : notices_(notices) {}
  void notificationType(std::int64_t type, const std::optional<ZELMessageFields>& value) override {
    ifMemoryAllows([&] {
      if (notices_.isTaken()) notices_.post({Notice::Kind::camera, eventJson(type, value, timeOfDay())});
    });
  }

 private:
  Notices& notices_;
};

std::shared_ptr<HeldCamera> HeldCamera::create(CameraOptions options, std::uint8_t resolution, std::string& error) {
  std::string serialNumber = options.serialNumber;
  auto made = Camera::create(std::move(options));
  if (!made) {
    error = made.error().message;
    return nullptr;
  }
  const std::shared_ptr<HeldCamera> held(new HeldCamera(std::move(serialNumber), *std::move(made), resolution));
  held->begin(held);
  return held;
}

HeldCamera::HeldCamera(std::string serialNumber, Camera camera, std::uint8_t resolution)
    : serialNumber_(std::move(serialNumber)), camera_(std::move(camera)), live_(camera_, resolution) {}

HeldCamera::~HeldCamera() { end(); }

// Whoever waits for an answer holds this object, so that its own end would come only with the answer.
void HeldCamera::end() {
  if (!receiver_) return;
  link_.reset();
  statistics_.reset();
  live_.end();
  camera_.stack().ucd().removeCameraNotificationReceiver(receiver_.get());
  const Camera ended(std::move(camera_));
  receiver_.reset();
}

void HeldCamera::begin(const std::shared_ptr<HeldCamera>& self) {
  self_ = self;
  receiver_ = std::make_shared<Receiver>(notices_);
  camera_.stack().ucd().addCameraNotificationReceiver(receiver_);
  link_.emplace(camera_.linkChanges());
  link_->each([this](LinkStatus) { tellLink(); });
  statistics_.emplace(camera_.statisticsEvery(kStatisticsPeriod));
  statistics_->each([this](const CameraStatistics& now) {
    keepOpen();
    live_.look(LiveStream::Clock::now());
    tellStatistics(now);
  });
  keepOpen();
}

// Asked once a second. A wait that has ended because another program has the camera is begun again.
void HeldCamera::keepOpen() {
  {
    const std::lock_guard lock(mutex_);
    if (isOpening_ || camera_.linkStatus() == LinkStatus::flowing) return;
    isOpening_ = true;
  }
  camera_.connect({.timeLimit = kPatience}).then([weak = self_](const Result<void>& result) {
    if (const auto self = weak.lock()) self->opened(result);
  });
}

void HeldCamera::opened(const Result<void>& result) {
  {
    const std::lock_guard lock(mutex_);
    isOpening_ = false;
    user_.reset();
    if (!result && result.error().reason == CameraError::Reason::inUse) user_ = result.error().message;
  }
  tellLink();
}

CameraSummary HeldCamera::summary() const {
  const std::lock_guard lock(mutex_);
  const CameraStatus status = cameraStatusOf(camera_.linkStatus(), isAttached_);
  // Frames arrive a moment before the wait for the camera ends, which knew who had it.
  return {serialNumber_, name_, firmware_, status, status == CameraStatus::streaming ? std::nullopt : user_};
}

void HeldCamera::noteAttached(const std::string& name, const std::string& firmware) {
  {
    const std::lock_guard lock(mutex_);
    isAttached_ = true;
    name_ = name;
    firmware_ = firmware;
  }
  tellLink();
}

void HeldCamera::noteDetached() {
  {
    const std::lock_guard lock(mutex_);
    isAttached_ = false;
    user_.reset();
  }
  tellLink();
}

// The bus and the link tell of a change each on a thread of its own; a status is told once, and the newest last.
void HeldCamera::tellLink() {
  const std::lock_guard telling(telling_);
  const CameraStatus now = status();
  if (std::exchange(told_, now) == now) return;
  notices_.post({Notice::Kind::link, {{"status", toString(now)}}});
}

void HeldCamera::tellStatistics(const CameraStatistics& now) {
  const auto before = std::exchange(before_, now);
  if (!before || !notices_.isTaken()) return;
  const double seconds = static_cast<double>(now.time - before->time) / 1000;
  const auto pictures = [](const CameraStatistics& at) { return at.stream ? at.stream->pictures : 0; };
  const std::uint64_t newPictures = pictures(now) >= pictures(*before) ? pictures(now) - pictures(*before) : 0;
  notices_.post({Notice::Kind::statistics,
                 {{"now", unixMicroseconds()},
                  {"pictures", pictures(now)},
                  {"bytes", now.link.bytesReceived},
                  {"dropped", droppedFrames(now.link.dropped)},
                  {"rate", seconds > 0 ? static_cast<double>(newPictures) / seconds : 0},
                  {"bytesWritten", now.link.bytesWritten},
                  {"roundTrip", now.link.roundTrip},
                  {"clockOffset", now.clockOffset}}});
}

nlohmann::ordered_json summaryJson(const CameraSummary& summary) {
  return {{"serial", summary.serialNumber},
          {"name", summary.name},
          {"firmware", summary.firmware},
          {"status", toString(summary.status)},
          {"busy", summary.user.has_value()}};
}

}  // namespace zel::gateway

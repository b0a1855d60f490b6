#include "gateway/cameras/cameras.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/platform/ports.h>

#include "base/has_memory_for.h"

namespace zel::gateway {

std::unique_ptr<Cameras> Cameras::create(Options options, std::string& error) {
  auto bus = LinuxPlatform::create(
      {.accessoriesFolder = options.accessoriesFolder, .warn = options.warn, .program = options.program}, error);
  if (!bus) return nullptr;
  return std::unique_ptr<Cameras>(new Cameras(std::move(options), std::move(bus)));
}

bool Cameras::begin(Added added, std::string& error) {
  added_ = std::move(added);
  watch();
  try {
    thread_ = std::thread([bus = bus_.get()] {
      // A call that found no memory is lost; the others go on.
      while (!hasMemoryFor([bus] { bus->runMainQueue(); })) {
      }
    });
  } catch (const std::system_error& fault) {
    error = fmt::format("no thread can be started: {}", fault.what());
    return false;
  }
  return true;
}

Cameras::Cameras(Options options, std::unique_ptr<LinuxPlatform> bus)
    : options_(std::move(options)), bus_(std::move(bus)) {}

Cameras::~Cameras() {
  stop();
  for (const auto& camera : cameras_) camera->end();
}

void Cameras::stop() {
  if (observations_.empty()) return;
  bus_->ports().accessories.unregisterForLocalNotifications();
  observations_.clear();
  if (thread_.joinable()) {
    bus_->ports().queues.mainQueue().post([bus = bus_.get()] { bus->stopMainQueue(); });
    thread_.join();
  }
}

// The bus tells of changes on its main queue, where those that are there already are looked at as well.
void Cameras::watch() {
  const auto& ports = bus_->ports();
  const auto observe = [&](std::string_view name, void (Cameras::*noted)(const platform::AccessoryDescription&)) {
    observations_.push_back(ports.notifications.observe(name, [this, noted](const platform::Notification& one) {
      if (const auto accessory = one.accessory(platform::kAccessoryKey)) (this->*noted)(accessory->description());
    }));
  };
  observe(platform::kAccessoryDidConnectNotification, &Cameras::attached);
  observe(platform::kAccessoryDidDisconnectNotification, &Cameras::detached);
  ports.accessories.registerForLocalNotifications();
  for (const auto& one : ports.accessories.connectedAccessories()) attached(one->description());
}

bool Cameras::isWanted(const platform::AccessoryDescription& camera) const {
  if (std::ranges::count(camera.protocolStrings, kAccessoryProtocol) == 0) return false;
  if (camera.serialNumber.empty()) {
    if (options_.warn) options_.warn(camera.name + " has no serial number to address it by, and is left out");
    return false;
  }
  return options_.serialNumber.empty() || options_.serialNumber == camera.serialNumber;
}

void Cameras::attached(const platform::AccessoryDescription& camera) {
  if (!isWanted(camera)) return;
  auto held = find(camera.serialNumber);
  if (!held && !(held = made(camera.serialNumber))) return;
  connections_[camera.serialNumber] = camera.connectionID;
  held->noteAttached(camera.name, camera.firmwareRevision);
}

// A camera that was plugged in again under another connection is there, whichever of the two is told first.
void Cameras::detached(const platform::AccessoryDescription& camera) {
  const auto found = connections_.find(camera.serialNumber);
  if (found == connections_.end() || found->second != camera.connectionID) return;
  connections_.erase(found);
  if (const auto held = find(camera.serialNumber)) held->noteDetached();
}

std::shared_ptr<HeldCamera> Cameras::made(const std::string& serialNumber) {
  CameraOptions options;
  options.serialNumber = serialNumber;
  options.accessoriesFolder = options_.accessoriesFolder;
  options.program = options_.program;
  options.timeLimit = options.transferTimeLimit = options_.timeLimit;
  options.tell = options_.tell;
  options.warn = options_.warn;
  std::string error;
  auto held = HeldCamera::create(std::move(options), options_.resolution, error);
  if (!held) {
    if (options_.warn) options_.warn(fmt::format("the camera {} cannot be held: {}", serialNumber, error));
    return nullptr;
  }
  {
    const std::lock_guard lock(mutex_);
    cameras_.push_back(held);
  }
  if (added_) added_(held);
  return held;
}

std::vector<std::shared_ptr<HeldCamera>> Cameras::all() const {
  const std::lock_guard lock(mutex_);
  return cameras_;
}

std::shared_ptr<HeldCamera> Cameras::find(std::string_view serialNumber) const {
  const std::lock_guard lock(mutex_);
  const auto found = std::ranges::find(cameras_, serialNumber, &HeldCamera::serialNumber);
  return found == cameras_.end() ? nullptr : *found;
}

}  // namespace zel::gateway

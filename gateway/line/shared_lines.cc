#include "gateway/line/shared_lines.h"

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/WireConstants.h>

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <future>
#include <map>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

#include "base/has_memory_for.h"
#include "platform/linux/linux_accessory.h"
#include "platform/linux/linux_run_loop.h"
#include "platform/linux/signal_mask.h"

namespace zel::gateway {
namespace {

using platform::Accessory;
using platform::LinuxAccessory;
using platform::LinuxRunLoop;

constexpr std::chrono::milliseconds kEndPause{5};

bool isCamera(const Accessory& accessory) {
  return std::ranges::count(accessory.description().protocolStrings, kAccessoryProtocol) != 0;
}

std::string nameOf(const Accessory& accessory) {
  const auto* const known = dynamic_cast<const LinuxAccessory*>(&accessory);
  return known != nullptr ? known->camera() : accessory.description().serialNumber;
}

}  // namespace

class SharedLines::State final : public std::enable_shared_from_this<State> {
 public:
  State(Options options, Observer* observer) : options_(std::move(options)), observer_(observer) {
    if (!options_.warn) options_.warn = [](const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); };
  }

  bool start(std::string& error) {
    platform_ = LinuxPlatform::create({.accessoriesFolder = options_.accessoriesFolder,
                                       .warn = options_.warn,
                                       .inUse = [this](const CameraInUse& camera) { sayInUse(camera); },
                                       .program = options_.program,
                                       .keepCameras = true,
                                       .direct = true},
                                      error);
    if (!platform_) return false;
    loop_ = static_cast<LinuxRunLoop&>(platform_->ports().queues.mainQueue()).shared_from_this();
    try {
      const platform::SignalMask noSignals;
      thread_ = std::thread([loop = loop_] {
        while (!hasMemoryFor([&] { loop->run(); })) continue;  // as on every other thread
      });
    } catch (const std::system_error& fault) {
      error = std::string("no thread for the cameras can be started: ") + fault.what();
      return false;
    }
    loop_->perform([self = shared_from_this()] { self->watch(); });
    return true;
  }

  // Openings in progress are waited for: they use the platform.
  void end() {
    if (thread_.joinable()) {
      while (!isEnded()) std::this_thread::sleep_for(kEndPause);
      loop_->leave();
      thread_.join();
    }
    platform_.reset();
  }

  std::vector<Camera> cameras() const {
    const std::lock_guard lock(mutex_);
    std::vector<Camera> all;
    for (const auto& [name, camera] : known_) all.push_back(camera);
    return all;
  }

  bool admit(const std::string& name, platform::UniqueDescriptor socket) {
    {
      const std::lock_guard lock(mutex_);
      const auto known = known_.find(name);
      if (known == known_.end() || !known->second.isPresent()) return false;
    }
    const auto moved = std::make_shared<platform::UniqueDescriptor>(std::move(socket));
    loop_->perform([self = shared_from_this(), name, moved] {
      const auto line = self->lines_.find(name);
      if (line != self->lines_.end()) line->second->admit(std::move(*moved));
    });
    return true;
  }

 private:
  // -- The lines' thread
  void watch() {
    const platform::Ports& ports = platform_->ports();
    arrivals_ = ports.notifications.observe(platform::kAccessoryDidConnectNotification, [this](const auto& told) {
      arrived(told.accessory(platform::kAccessoryKey), true);
    });
    departures_ = ports.notifications.observe(platform::kAccessoryDidDisconnectNotification, [this](const auto& told) {
      departed(told.accessory(platform::kAccessoryKey));
    });
    ports.accessories.registerForLocalNotifications();
    for (const auto& accessory : ports.accessories.connectedAccessories()) arrived(accessory, false);
  }

  void arrived(const std::shared_ptr<Accessory>& accessory, bool isTold) {
    if (!accessory || !isCamera(*accessory)) return;
    const std::string name = nameOf(*accessory);
    if (!options_.camera.empty() && options_.camera != name) return;
    auto& line = lines_[name];
    if (!line) {
      line = std::make_shared<SharedCamera>(platform_->ports(), loop_, [this, name](LineState) { noteState(name); });
    }
    auto* const known = dynamic_cast<LinuxAccessory*>(accessory.get());
    line->arrived(accessory, isTold && known != nullptr && known->hasConnection());
  }

  void departed(const std::shared_ptr<Accessory>& accessory) {
    for (const auto& [name, line] : lines_) line->departed(accessory);
  }

  void noteState(const std::string& name) {
    const auto& line = lines_.at(name);
    Camera camera;
    {
      const std::lock_guard lock(mutex_);
      Camera& known = known_[name];
      known.camera = name;
      known.state = line->state();
      if (const auto& accessory = line->accessory()) {
        known.name = accessory->description().name;
        known.firmwareRevision = accessory->description().firmwareRevision;
      }
      if (known.isPresent()) refused_.erase(name);
      camera = known;
    }
    if (observer_ != nullptr) observer_->cameraChanged(camera);
  }

  // It is tried again and again, and said once.
  void sayInUse(const CameraInUse& camera) {
    {
      const std::lock_guard lock(mutex_);
      if (!refused_.insert(camera.camera).second) return;
    }
    options_.warn(camera.inWords());
  }

  bool isEnded() {
    std::promise<bool> told;
    auto isEnded = told.get_future();
    loop_->perform([this, &told] {
      arrivals_.reset();
      departures_.reset();
      bool isOpening = false;
      for (const auto& [name, line] : lines_) {
        line->close();
        isOpening = isOpening || line->isOpening();
      }
      if (!isOpening) lines_.clear();
      told.set_value(!isOpening);
    });
    return isEnded.get();
  }

  Options options_;
  Observer* const observer_;
  std::unique_ptr<LinuxPlatform> platform_;
  std::shared_ptr<LinuxRunLoop> loop_;
  std::thread thread_;

  // Lines' thread only.
  std::unique_ptr<platform::NotificationObservation> arrivals_, departures_;
  std::map<std::string, std::shared_ptr<SharedCamera>> lines_;

  mutable std::mutex mutex_;
  std::map<std::string, Camera> known_;
  std::set<std::string> refused_;
};

SharedLines::SharedLines(std::shared_ptr<State> state) : state_(std::move(state)) {}

SharedLines::~SharedLines() { state_->end(); }

std::unique_ptr<SharedLines> SharedLines::create(Options options, Observer* observer, std::string& error) {
  const auto state = std::make_shared<State>(std::move(options), observer);
  std::unique_ptr<SharedLines> lines(new SharedLines(state));
  return state->start(error) ? std::move(lines) : nullptr;
}

std::vector<SharedLines::Camera> SharedLines::cameras() const { return state_->cameras(); }

bool SharedLines::admit(const std::string& camera, platform::UniqueDescriptor socket) {
  return state_->admit(camera, std::move(socket));
}

}  // namespace zel::gateway

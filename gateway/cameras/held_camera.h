#pragma once

#include <ZELTarkaSDK/Camera.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "gateway/cameras/held_status.h"
#include "gateway/cameras/live_stream.h"
#include "gateway/cameras/notices.h"

namespace zel::gateway {

// What a list of cameras tells of one.
struct CameraSummary {
  std::string serialNumber, name, firmware;
  CameraStatus status = CameraStatus::absent;
  std::optional<std::string> user;  // who else has it, in words
};

// One camera of the gateway, attached or not. It is opened as soon as it can be, and again after every loss.
//
// Thread: any thread.
class HeldCamera {
 public:
  // Errors: null; `error` says why.
  //
  // resolution: the code of its live stream.
  static std::shared_ptr<HeldCamera> create(CameraOptions options, std::uint8_t resolution, std::string& error);
  ~HeldCamera();
  HeldCamera(const HeldCamera&) = delete;
  HeldCamera& operator=(const HeldCamera&) = delete;

  const std::string& serialNumber() const { return serialNumber_; }
  CameraSummary summary() const;
  CameraStatus status() const { return summary().status; }
  Camera& camera() { return camera_; }
  Notices& notices() { return notices_; }
  LiveStream& live() { return live_; }

  // Closes the camera, and waits for its threads; what was asked of it ends. It cannot be used any more.
  void end();

  // It has been attached or detached.
  void noteAttached(const std::string& name, const std::string& firmware);
  void noteDetached();

 private:
  class Receiver;

  HeldCamera(std::string serialNumber, Camera camera, std::uint8_t resolution);
  void begin(const std::shared_ptr<HeldCamera>& self);
  void keepOpen();
  void opened(const Result<void>& result);
  void tellLink();
  void tellStatistics(const CameraStatistics& now);

  const std::string serialNumber_;
  Notices notices_;
  mutable std::mutex mutex_;
  std::string name_, firmware_;
  bool isAttached_ = false, isOpening_ = false;
  std::optional<std::string> user_;
  std::mutex telling_;                      // held while a status is told
  std::optional<CameraStatus> told_;        // by who holds telling_
  std::optional<CameraStatistics> before_;  // of a second ago
  std::weak_ptr<HeldCamera> self_;
  std::shared_ptr<Receiver> receiver_;
  Camera camera_;  // its callbacks use what stands above
  LiveStream live_;
  std::optional<Subscription<LinkStatus>> link_;
  std::optional<Subscription<CameraStatistics>> statistics_;
};

// The object of a camera in a list.
nlohmann::ordered_json summaryJson(const CameraSummary& summary);

}  // namespace zel::gateway

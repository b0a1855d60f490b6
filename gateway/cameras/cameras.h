#pragma once

#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/PreviewFormat.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <ZELTarkaSDK/platform/accessory.h>
#include <ZELTarkaSDK/platform/notification_center.h>

#include "gateway/cameras/held_camera.h"

namespace zel::gateway {

// All cameras of a bus, or one of them: those that are attached, and those that have been.
//
// Thread: any thread.
class Cameras {
 public:
  struct Options {
    std::string accessoriesFolder = {};                 // see LinuxPlatform::Options
    std::string serialNumber = {};                      // the one camera; empty: all
    std::string program = {};                           // what other programs are told
    std::uint8_t resolution = kSmallestPreview;         // of live streams; the camera's code
    std::chrono::milliseconds timeLimit{10'000};        // of a request
    std::function<void(const std::string&)> tell = {};  // what is done by itself, in words
    std::function<void(const std::string&)> warn = {};  // what has to be skipped, in words
  };

  // Errors: null; `error` says why.
  static std::unique_ptr<Cameras> create(Options options, std::string& error);
  using Added = std::function<void(const std::shared_ptr<HeldCamera>&)>;

  // Looks for cameras, and opens them, from now on. added: called with each that was not known, on the bus's thread.
  //
  // Errors: false; `error` says why.
  bool begin(Added added, std::string& error);
  // No camera is looked for any more; those that are known stay as they are.
  void stop();
  // Stops, and ends every camera.
  ~Cameras();
  Cameras(const Cameras&) = delete;
  Cameras& operator=(const Cameras&) = delete;

  // In the order in which they were first attached.
  std::vector<std::shared_ptr<HeldCamera>> all() const;
  // Null where no camera has that serial number.
  std::shared_ptr<HeldCamera> find(std::string_view serialNumber) const;

 private:
  Cameras(Options options, std::unique_ptr<LinuxPlatform> bus);
  void watch();
  void attached(const platform::AccessoryDescription& camera);
  void detached(const platform::AccessoryDescription& camera);
  bool isWanted(const platform::AccessoryDescription& camera) const;
  std::shared_ptr<HeldCamera> made(const std::string& serialNumber);

  const Options options_;
  Added added_;
  const std::unique_ptr<LinuxPlatform> bus_;
  mutable std::mutex mutex_;
  std::vector<std::shared_ptr<HeldCamera>> cameras_;
  std::map<std::string, std::uint64_t, std::less<>> connections_;  // of those that are attached, on the bus's thread
  std::vector<std::unique_ptr<platform::NotificationObservation>> observations_;
  std::thread thread_;
};

}  // namespace zel::gateway

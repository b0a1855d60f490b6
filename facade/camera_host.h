#pragma once

#include <ZELTarkaSDK/CameraInUse.h>
#include <ZELTarkaSDK/CameraOptions.h>
#include <ZELTarkaSDK/LinuxMedia.h>
#include <ZELTarkaSDK/LinuxPlatform.h>
#include <ZELTarkaSDK/platform/ports.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "facade/bounded_accessories.h"
#include "facade/decoders_on_demand.h"
#include "facade/steady_accessories.h"

namespace zel {

// What a camera runs on: the host's ports, or a platform of its own with a thread that runs its main queue.
//
// Owner:  destroy everything that is built on the ports first.
// Thread: destroy on any thread; on its own it does not wait.
class CameraHost {
 public:
  // inUse: of LinuxPlatform::Options.
  // Errors: null, and why.
  static std::unique_ptr<CameraHost> create(const CameraOptions& options, std::function<void(const CameraInUse&)> inUse,
                                            std::string& error);
  ~CameraHost();
  CameraHost(const CameraHost&) = delete;
  CameraHost& operator=(const CameraHost&) = delete;

  const platform::Ports& ports() const { return *ports_; }
  // The ports' decoders; null where the platform decodes no video.
  DecodersOnDemand* decoders() { return decoders_ ? &*decoders_ : nullptr; }
  // Stops what cameras send while it is reached. Null on the host's ports.
  std::shared_ptr<ReadingBound> readingBound() const { return own_ ? own_->accessories->bound() : nullptr; }
  // Where the bus is, for people; empty on the host's ports.
  std::string busFolder() const;

 private:
  struct Own {
    std::unique_ptr<LinuxPlatform> platform;
    std::unique_ptr<BoundedAccessories> accessories;
    std::unique_ptr<SteadyAccessories> steady;
    std::unique_ptr<LinuxMedia> media;
    std::thread main;  // runs the main queue
    std::string folder;
  };
  CameraHost() = default;
  static void end(Own own);

  void use(const platform::Ports& ports, platform::AccessoryManager& accessories);

  std::unique_ptr<Own> own_;
  std::optional<DecodersOnDemand> decoders_;
  std::optional<platform::Ports> ports_;
};

}  // namespace zel

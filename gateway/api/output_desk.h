#pragma once

#include <ZELTarkaSDK/CameraOptions.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "gateway/media/worker.h"
#include "gateway/outputs/camera_outputs.h"

namespace zel::gateway {

// The outputs of all cameras. They are begun and ended on a thread of their own, since both may wait.
//
// Thread: any thread.
class OutputDesk {
 public:
  struct Options {
    CameraOptions camera;  // of the cameras' own objects; without a serial number
    std::uint8_t resolution = 0;
    std::string folder;  // of files
  };

  explicit OutputDesk(Options options) : options_(std::move(options)) {}
  // Ends all outputs.
  ~OutputDesk() { worker_.stop(); }
  OutputDesk(const OutputDesk&) = delete;
  OutputDesk& operator=(const OutputDesk&) = delete;

  std::vector<OutputStatus> list(const std::string& serialNumber);
  // Calls `work` with the camera's outputs, later. False where too many wait.
  bool post(const std::string& serialNumber, std::function<void(CameraOutputs&)> work);

 private:
  CameraOutputs& of(const std::string& serialNumber);

  const Options options_;
  std::mutex mutex_;
  std::map<std::string, std::unique_ptr<CameraOutputs>> outputs_;
  Worker worker_;
};

}  // namespace zel::gateway

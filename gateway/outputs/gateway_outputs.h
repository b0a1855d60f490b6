#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/mutex.h"
#include "gateway/outputs/camera_outputs.h"

namespace zel::gateway {

// The outputs of all cameras of a gateway, by their serial numbers.
//
// Thread: any thread. The destructor ends all outputs, and waits for them as CameraOutputs does.
class GatewayOutputs {
 public:
  // Makes a camera's streams, such as CameraOutputStreams.
  using MakeStreams = std::function<std::shared_ptr<OutputStreams>(const std::string& serialNumber)>;

  GatewayOutputs(CameraOutputs::Options options, MakeStreams makeStreams)
      : options_(std::move(options)), makeStreams_(std::move(makeStreams)) {}

  // Those of a camera, which the caller knows to be one; made with the first call.
  std::shared_ptr<CameraOutputs> of(const std::string& serialNumber) {
    const MutexLock lock(mutex_);
    auto& outputs = cameras_[serialNumber];
    if (!outputs) outputs = std::make_shared<CameraOutputs>(options_, makeStreams_(serialNumber));
    return outputs;
  }

  // All of a camera; makes nothing.
  std::vector<OutputStatus> list(const std::string& serialNumber) const {
    std::shared_ptr<CameraOutputs> outputs;
    {
      const MutexLock lock(mutex_);
      const auto found = cameras_.find(serialNumber);
      if (found == cameras_.end()) return {};
      outputs = found->second;
    }
    return outputs->list();
  }

 private:
  const CameraOutputs::Options options_;
  const MakeStreams makeStreams_;
  mutable Mutex mutex_;
  std::map<std::string, std::shared_ptr<CameraOutputs>> cameras_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel::gateway

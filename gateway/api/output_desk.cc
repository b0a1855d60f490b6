#include "gateway/api/output_desk.h"

#include <utility>

#include "gateway/outputs/camera_output_streams.h"

namespace zel::gateway {

CameraOutputs& OutputDesk::of(const std::string& serialNumber) {
  const std::lock_guard lock(mutex_);
  auto& outputs = outputs_[serialNumber];
  if (!outputs) {
    CameraOptions camera = options_.camera;
    camera.serialNumber = serialNumber;
    outputs =
        std::make_unique<CameraOutputs>(CameraOutputs::Options{.folder = options_.folder},
                                        std::make_shared<CameraOutputStreams>(std::move(camera), options_.resolution));
  }
  return *outputs;
}

std::vector<OutputStatus> OutputDesk::list(const std::string& serialNumber) { return of(serialNumber).list(); }

bool OutputDesk::post(const std::string& serialNumber, std::function<void(CameraOutputs&)> work) {
  return worker_.post([&outputs = of(serialNumber), work = std::move(work)] { work(outputs); });
}

}  // namespace zel::gateway

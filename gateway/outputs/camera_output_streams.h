#pragma once

#include <cstdint>

#include <ZELTarkaSDK/CameraOptions.h>
#include <ZELTarkaSDK/PreviewFormat.h>

#include "gateway/outputs/output_streams.h"

namespace zel::gateway {

// Streams of camera objects of their own, one each, which reach the camera as every other host does: through the
// gateway that holds it. So a stitched stream is decoded apart from what the camera's viewers get.
class CameraOutputStreams final : public OutputStreams {
 public:
  // camera: with the serial number of the one camera.
  CameraOutputStreams(CameraOptions camera, std::uint8_t resolution);

  Result<std::unique_ptr<OutputStream>> begin(const std::optional<StitchedSize>& stitched) override;

 private:
  const CameraOptions camera_;
  const std::uint8_t resolution_;
};

}  // namespace zel::gateway

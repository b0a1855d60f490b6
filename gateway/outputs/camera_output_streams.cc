#include "gateway/outputs/camera_output_streams.h"

#include <ZELTarkaSDK/Camera.h>

#include <utility>

namespace zel::gateway {
namespace {

class OwnCameraStream final : public OutputStream {
 public:
  OwnCameraStream(Camera camera, CameraStream stream, Pending<void> connecting)
      : camera_(std::move(camera)), stream_(std::move(stream)), connecting_(std::move(connecting)) {}
  ~OwnCameraStream() override { stream_.stop(); }

  Result<int> addOutput(const std::string& address) override { return stream_.addOutput(address); }
  Result<OutputReport> removeOutput(int id) override { return stream_.removeOutput(id); }
  std::vector<OutputReport> outputs() const override { return stream_.outputs(); }
  std::optional<std::string> failure() const override { return stream_.failure(); }

 private:
  Camera camera_;
  CameraStream stream_;
  Pending<void> connecting_;  // nobody waits for it: the stream begins when the camera comes
};

}  // namespace

CameraOutputStreams::CameraOutputStreams(CameraOptions camera, std::uint8_t resolution)
    : camera_(std::move(camera)), resolution_(resolution) {}

Result<std::unique_ptr<OutputStream>> CameraOutputStreams::begin(const std::optional<StitchedSize>& stitched) {
  auto camera = Camera::create(camera_);
  if (!camera) return camera.error();
  StreamOptions options;
  options.resolution = resolution_;
  if (stitched) options.stitched = {.width = stitched->width, .height = stitched->height, .bitrate = stitched->bitrate};
  auto stream = camera->beginStream(options);
  if (!stream) return stream.error();
  auto connecting = camera->connect();
  return std::unique_ptr<OutputStream>(
      std::make_unique<OwnCameraStream>(*std::move(camera), *std::move(stream), std::move(connecting)));
}

}  // namespace zel::gateway

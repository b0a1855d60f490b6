#include "bindings/gstreamer/panoramas.h"

#include <utility>

namespace zel::gst {
namespace {

constexpr int kEnough = 30;  // a second of pictures: more than a broken one and what follows it

}  // namespace

Panoramas::Panoramas(platform::MediaLibrary& library, const Settings& settings)
    : render_(library.createFlatOffscreenRender(settings.width, settings.height)) {
  if (!render_) return;
  render_->setIsRenderVideo(true);
  render_->setRemovePurple(settings.removePurple);
}

void Panoramas::setOffset(const std::string& offset) {
  const std::lock_guard lock(mutex_);
  offset_ = offset;
  render_->setOffset(offset);
}

platform::PixelBufferRef Panoramas::stitched(const platform::PixelBufferRef& picture) {
  const std::lock_guard lock(mutex_);
  auto image = render_->renderVideo(picture);
  failures_ = image ? 0 : failures_ + 1;
  return image;
}

CameraError Panoramas::failure() {
  const std::lock_guard lock(mutex_);
  return {CameraError::Reason::media, "no picture can be stitched with the camera's lens offset \"" + offset_ + "\""};
}

std::optional<CameraError> Panoramas::takeFailure() {
  {
    const std::lock_guard lock(mutex_);
    if (failures_ < kEnough || std::exchange(isTold_, true)) return std::nullopt;
  }
  return failure();
}

}  // namespace zel::gst

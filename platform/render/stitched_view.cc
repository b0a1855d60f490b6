#include "platform/render/stitched_view.h"

#include <utility>

namespace zel::render {

StitchedView::StitchedView(PictureSize size, const StitcherOptions& options, Diagnostics tell)
    : size_(size), options_(options), tell_(std::move(tell)) {}

void StitchedView::playVideoStream(std::shared_ptr<ZELPreviewPlayer> player, std::string_view offset) {
  std::unique_ptr<StitchingRender> render;
  if (player) {
    render = std::make_unique<StitchingRender>(size_, options_, tell_);
    render->setIsRenderVideo(true);
    render->setOffset(offset);
  }
  const MutexLock lock(mutex_);
  player_.swap(player);  // the former one is released after the lock, like the former renderer
  render_.swap(render);
  shown_.reset();
}

platform::PixelBufferRef StitchedView::picture() {
  const MutexLock lock(mutex_);
  if (!player_) return nullptr;
  platform::PixelBufferRef newest;
  while (auto next = player_->copyNextFrame(nullptr)) newest = std::move(next);
  if (newest) show(newest);
  return shown_;
}

// If a picture cannot be unwrapped, the previous one stays.
void StitchedView::show(const platform::PixelBufferRef& picture) {
  if (auto image = render_->renderVideo(picture)) shown_ = std::move(image);
}

}  // namespace zel::render

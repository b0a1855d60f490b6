#include "live/stitch_stage.h"

#include <utility>

#include "base/has_memory_for.h"

namespace zel {
namespace {

// Makes the renderer's graphics context current for a scope.
class CurrentContext {
 public:
  explicit CurrentContext(platform::FlatOffscreenRender& render)
      : render_(render), former_(render.makeContextCurrent()) {}
  ~CurrentContext() { render_.restoreContext(former_); }
  CurrentContext(const CurrentContext&) = delete;
  CurrentContext& operator=(const CurrentContext&) = delete;

 private:
  platform::FlatOffscreenRender& render_;
  const platform::GraphicsContext former_;
};

}  // namespace

void StitchStage::append(LiveFrame frame) {
  bool keptAll = false;
  if (frame) ifMemoryAllows([&] { keptAll = pixel_render_queue_.append(std::move(frame)); });
  if (!keptAll) dropped_.add(1);
}

void StitchStage::run(const std::function<bool()>& isOver, const std::function<void(LiveFrame)>& handOn) {
  renderLock_.lock();
  while (!isOver()) step(handOn);
  renderLock_.unlock();
  dropRender();
}

void StitchStage::step(const std::function<void(LiveFrame)>& handOn) {
  const LiveFrame frame = pixel_render_queue_.take();
  if (!frame) return pixel_render_queue_.waitForOne(clock_);
  LiveFrame stitched;
  ifMemoryAllows([&] { stitched = stitch(*frame); });
  (stitched ? stitched_ : notStitched_).add(1);
  if (stitched) handOn(std::move(stitched));
}

LiveFrame StitchStage::stitch(const orq::MediaPixelBuffer& picture) {
  const Render used = render();
  if (!used) return nullptr;
  used->setIsRenderVideo(true);
  auto image = used->renderVideo(picture.pixelBuffer);
  return image ? std::make_shared<orq::MediaPixelBuffer>(std::move(image), picture.timestamp) : nullptr;
}

StitchStage::Render StitchStage::render() {
  {
    const MutexLock lock(renderMutex_);
    if (render_) return render_;
  }
  return createRender();
}

// Only the render thread creates one, without the lock, since that takes time. The setting is then applied under the
// lock, like every change of it, so that no change is lost.
StitchStage::Render StitchStage::createRender() {
  if (library_ == nullptr) return nullptr;
  Render made = library_->createFlatOffscreenRender(static_cast<std::int32_t>(settings_.width.get()),
                                                    static_cast<std::int32_t>(settings_.height.get()));
  if (!made) return nullptr;
  made->setOffset(settings_.offset.get().value_or(""));
  made->setIsRenderVideo(true);
  made->setLogoAngle(settings_.logoAngle.get());
  made->setLogoImage(settings_.logoImage.get());
  const MutexLock lock(renderMutex_);
  made->setRemovePurple(settings_.removePurple.get());
  render_ = made;
  return made;
}

void StitchStage::setRemovePurple(bool removePurple) {
  const MutexLock lock(renderMutex_);
  settings_.removePurple.set(removePurple);
  if (!render_) return;
  const CurrentContext context(*render_);
  render_->setRemovePurple(removePurple);
}

void StitchStage::dropRender() {
  Render dropped;  // destroyed without the lock
  const MutexLock lock(renderMutex_);
  dropped.swap(render_);
}

void StitchStage::copyStatistics(LiveStatistics& into) const {
  into.droppedBeforeStitching = dropped_.get();
  into.notStitched = notStitched_.get();
  into.stitched = stitched_.get();
}

}  // namespace zel

#include <ZELTarkaSDK/ZELRenderView.h>

#include <utility>

#include <ZELTarkaSDK/platform/ports.h>

std::shared_ptr<ZELRenderView> ZELRenderView::initWithFrame(const zel::platform::Ports& ports, const ZELRect& frame,
                                                            std::int32_t renderType) {
  if (ports.mediaLibrary == nullptr) return nullptr;
  auto view = ports.mediaLibrary->createRenderView(frame, renderType);
  if (!view) return nullptr;
  return std::shared_ptr<ZELRenderView>(new ZELRenderView(std::move(view), frame, renderType));
}

ZELRenderView::ZELRenderView(std::unique_ptr<zel::platform::RenderView> view, const ZELRect& frame,
                             std::int32_t renderType)
    : view_(std::move(view)), frame_(frame), renderType_(renderType) {}

ZELRenderView::~ZELRenderView() = default;

void ZELRenderView::playVideoStream(std::shared_ptr<ZELPreviewPlayer> player, std::string_view offset) {
  view_->playVideoStream(std::move(player), offset);
}

zel::platform::PixelBufferRef ZELRenderView::picture() const { return view_->picture(); }

#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/platform/media_library.h>

class ZELPreviewPlayer;

namespace zel::platform {
struct Ports;
}

using ZELRect = zel::platform::Rectangle;

// Shows the camera's preview, unwrapped, with the host's renderer.
// Owner:  the ports must outlive the view.
// Thread: one at a time, but for picture().
class ZEL_EXPORT ZELRenderView {
 public:
  // initWithFrame:renderType: - frame in points; render type 0 is the only one in use.
  // Errors: null when the host has no renderer.
  static std::shared_ptr<ZELRenderView> initWithFrame(const zel::platform::Ports& ports, const ZELRect& frame,
                                                      std::int32_t renderType);
  ~ZELRenderView();
  ZELRenderView(const ZELRenderView&) = delete;
  ZELRenderView& operator=(const ZELRenderView&) = delete;

  const ZELRect& frame() const { return frame_; }
  std::int32_t renderType() const { return renderType_; }

  // playVideoStream:offset: - shows the player's pictures. offset: the camera's lens offset, as its text.
  void playVideoStream(std::shared_ptr<ZELPreviewPlayer> player, std::string_view offset);

  // The image that is shown; null before the first, and when the host does not provide it.
  // Thread: any thread.
  zel::platform::PixelBufferRef picture() const;

 private:
  ZELRenderView(std::unique_ptr<zel::platform::RenderView> view, const ZELRect& frame, std::int32_t renderType);

  const std::unique_ptr<zel::platform::RenderView> view_;
  const ZELRect frame_;
  const std::int32_t renderType_;
};

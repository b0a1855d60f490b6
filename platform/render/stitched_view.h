#pragma once

#include <memory>

#include <ZELTarkaSDK/ZELPreviewPlayer.h>
#include <ZELTarkaSDK/platform/media_library.h>

#include "base/mutex.h"
#include "platform/render/stitching_render.h"

namespace zel::render {

// A view without a screen. picture() polls the player and unwraps the newest picture. So the player's delegate stays
// free for other uses, and no picture is unwrapped unless it is requested.
// Owner:  keeps the player until another one, or null, is played.
// Errors: an invalid offset shows nothing, and is reported once.
class StitchedView final : public platform::RenderView {
 public:
  // size must be valid for the stitcher.
  StitchedView(PictureSize size, const StitcherOptions& options, Diagnostics tell);

  void playVideoStream(std::shared_ptr<ZELPreviewPlayer> player, std::string_view offset) override;
  platform::PixelBufferRef picture() override;

 private:
  void show(const platform::PixelBufferRef& picture) ZEL_REQUIRES(mutex_);

  const PictureSize size_;
  const StitcherOptions options_;
  const Diagnostics tell_;

  Mutex mutex_;
  std::shared_ptr<ZELPreviewPlayer> player_ ZEL_GUARDED_BY(mutex_);
  std::unique_ptr<StitchingRender> render_ ZEL_GUARDED_BY(mutex_);
  platform::PixelBufferRef shown_ ZEL_GUARDED_BY(mutex_);
};

}  // namespace zel::render

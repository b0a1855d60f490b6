#pragma once

#include <memory>

#include <ZELTarkaSDK/ZELPreviewPlayer.h>

#include <ZELTarkaSDK/platform/media_library.h>
#include "base/mutex.h"
#include "platform/render/stitching_render.h"

namespace zel::render {

// A view without a screen. It polls the player, as a screen would at each of its own pictures, but only when somebody
// looks: the newest picture is unwrapped in picture(). So the player's delegate stays free for others, and nothing is
// unwrapped that nobody sees.
// Owner:  keeps the player until another one, or none, is played.
// Errors: an offset that makes no sense shows nothing, and is told once.
class StitchedView final : public platform::RenderView {
 public:
  // size must be one that the stitcher makes.
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

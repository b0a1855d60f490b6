#pragma once

#include <ZELTarkaSDK/platform/media_library.h>

#include "platform/render/fault_teller.h"
#include "platform/render/stitcher.h"

namespace zel::render {

// The host's media library: renderers and views that stitch on the processor; see StitchingRender and StitchedView.
class StitchingLibrary final : public platform::MediaLibrary {
 public:
  // tell: receives faults that give no picture, each once for a renderer.
  explicit StitchingLibrary(Diagnostics tell, const StitcherOptions& options = {});

  // Errors: null for odd sides, and for those below 2 or above Stitcher::kLargestSide; each size is reported once.
  std::unique_ptr<platform::FlatOffscreenRender> createFlatOffscreenRender(std::int32_t width,
                                                                           std::int32_t height) override;

  // frame: a point is a pixel; fractions and the position are ignored.
  // Errors: null for such sizes, and for every render type but 0.
  std::unique_ptr<platform::RenderView> createRenderView(const platform::Rectangle& frame,
                                                         std::int32_t renderType) override;

 private:
  bool canMake(PictureSize size);

  const Diagnostics tell_;
  const StitcherOptions options_;
  FaultTeller faults_;
};

}  // namespace zel::render

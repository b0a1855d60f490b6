#include "platform/render/stitching_library.h"

#include <utility>

#include "platform/render/stitched_view.h"
#include "platform/render/stitching_render.h"

namespace zel::render {
namespace {

// NaN and too large values become an invalid size.
int pixelsIn(double points) { return points >= 0 && points < 1e6 ? static_cast<int>(points) : -1; }

}  // namespace

StitchingLibrary::StitchingLibrary(Diagnostics tell, const StitcherOptions& options)
    : tell_(std::move(tell)), options_(options), faults_(tell_) {}

bool StitchingLibrary::canMake(PictureSize size) {
  if (Stitcher::canMake(size)) return true;
  faults_.tell("stitching: a panorama of " + std::to_string(size.width) + " x " + std::to_string(size.height) +
               " cannot be made; its sides must be even, from 2 to " + std::to_string(Stitcher::kLargestSide));
  return false;
}

std::unique_ptr<platform::FlatOffscreenRender> StitchingLibrary::createFlatOffscreenRender(std::int32_t width,
                                                                                           std::int32_t height) {
  if (!canMake({width, height})) return nullptr;
  return std::make_unique<StitchingRender>(PictureSize{width, height}, options_, tell_);
}

std::unique_ptr<platform::RenderView> StitchingLibrary::createRenderView(const platform::Rectangle& frame,
                                                                         std::int32_t renderType) {
  const PictureSize size{pixelsIn(frame.width), pixelsIn(frame.height)};
  if (renderType != 0 || !canMake(size)) return nullptr;
  return std::make_unique<StitchedView>(size, options_, tell_);
}

}  // namespace zel::render

#include "platform/render/stitching_render.h"

#include <new>
#include <utility>

namespace zel::render {
namespace {

std::string sizeText(int width, int height) { return std::to_string(width) + " x " + std::to_string(height); }

}  // namespace

StitchingRender::StitchingRender(PictureSize output, const StitcherOptions& options, Diagnostics tell)
    : output_(output), options_(options), faults_(std::move(tell)), pool_(output, kMostImages) {}

void StitchingRender::setOffset(std::string_view offset) {
  if (stitcher_ && offset == offset_) return;
  offset_ = offset;
  stitcher_.reset();  // its threads and map are freed before the next one's are created
  try {
    StitcherCreation creation = Stitcher::create(offset, output_, options_);
    if (!creation.stitcher) faults_.tell(creation.fault);
    stitcher_ = std::move(creation.stitcher);
  } catch (const std::bad_alloc&) {
    tellOfMemory();
    throw;  // the caller may retry
  }
  logoIsShown_ = !logo_;
}

void StitchingRender::tellOfMemory() {
  faults_.tell("stitching: there is not enough memory for a picture of " + sizeText(output_.width, output_.height));
}

void StitchingRender::setLogoAngle(float angle) {
  if (angle == logoAngle_) return;
  logoAngle_ = angle;
  logoIsShown_ = false;
}

void StitchingRender::setLogoImage(const std::optional<platform::RgbaImage>& image) {
  logo_.reset();
  logoIsShown_ = false;
  if (!image) return;
  logo_ = LogoImage{image->width, image->height, image->pixels};
}

platform::PixelBufferRef StitchingRender::renderVideo(const platform::PixelBufferRef& picture) {
  if (!picture) return nullptr;
  if (!stitcher_) {
    if (offset_.empty()) faults_.tell("lens offset: the text is empty");
    return nullptr;
  }
  try {
    return stitched(*picture);
  } catch (const std::bad_alloc&) {
    tellOfMemory();
    return nullptr;
  }
}

platform::PixelBufferRef StitchingRender::stitched(const platform::PixelBuffer& picture) {
  auto image = pool_.take();
  if (!image) {
    faults_.tell("stitching: all of the " + std::to_string(kMostImages) + " stitched pictures are still in use");
    return nullptr;
  }
  const platform::PictureColour colour = picture.colour();
  image->setColour(colour);
  if (std::exchange(matrix_, colour.matrix) != colour.matrix) logoIsShown_ = false;
  stitcher_->setRemovePurple(removePurple_.load(std::memory_order_relaxed));
  if (!isVideo_) stitcher_->beginScene();
  if (!std::exchange(logoIsShown_, true)) showLogo();
  if (stitcher_->stitch(picture, outputOf(*image))) return image;
  faults_.tell("stitching: no panorama can be made of a picture of " + sizeText(picture.width(), picture.height()));
  return nullptr;
}

void StitchingRender::showLogo() {
  stitcher_->clearLogo();
  if (!logo_ || stitcher_->setLogo(*logo_, static_cast<double>(logoAngle_), matrix_)) return;
  faults_.tell("logo: it is not shown, since its size, its bytes or its angle make no sense");
}

}  // namespace zel::render

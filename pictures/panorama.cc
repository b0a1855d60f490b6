#include "pictures/panorama.h"

#include <vector>

#include "pictures/exif_direction.h"
#include "pictures/panorama_metadata.h"

namespace zel::app {
namespace {

constexpr int kQuality = 95;

// Twice as wide as high, and both even.
int panoramaWidth(int photoWidth) { return photoWidth - photoWidth % 4; }

}  // namespace

std::optional<PanoramaFile> PanoramaMaker::panoramaOf(std::span<const std::uint8_t> photo, std::string& error) {
  const auto picture = pictureOfJpeg(photo, error);
  if (!picture) return std::nullopt;
  error.clear();
  const auto image = stitched(picture);
  if (!image) return std::nullopt;
  error = "the panorama cannot be written as a JPEG file";
  const auto file = jpegOf(*image, kQuality);
  const auto exif = exifSegmentIn(photo);
  const auto packet = panoramaPacket(image->width(), image->height(), directionIn(exif));
  if (!file || !packet) return std::nullopt;
  const JpegBytes xmp = xmpSegmentOf(*packet);
  const std::vector<std::span<const std::uint8_t>> segments = {exif, xmp};
  return PanoramaFile{withSegments(*file, segments), image->width(), image->height()};
}

platform::PixelBufferRef PanoramaMaker::stitched(const platform::PixelBufferRef& picture) {
  const int width = panoramaWidth(picture->width());
  if (!render_ || width != width_) {
    render_ = library_.createFlatOffscreenRender(width, width / 2);
    width_ = width;
    if (render_) render_->setOffset(offset_);
  }
  return render_ ? render_->renderVideo(picture) : nullptr;
}

}  // namespace zel::app

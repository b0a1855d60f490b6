#include <ZELTarkaSDK/Panorama.h>

#include <utility>
#include <vector>

#include "pictures/exif_direction.h"
#include "pictures/jpeg_file.h"
#include "pictures/panorama_metadata.h"

namespace zel {
namespace {

// Twice as wide as high, and both even.
int panoramaWidth(int photoWidth) { return photoWidth - photoWidth % 4; }

}  // namespace

// Its function stands in the class, so that it is inline and not shown to hosts.
struct PanoramaMaker::State {
  platform::PixelBufferRef stitched(const platform::PixelBufferRef& picture) {
    const int wanted = panoramaWidth(picture->width());
    if (!render || wanted != width) {
      render = library.createFlatOffscreenRender(wanted, wanted / 2);
      width = wanted;
      if (render) render->setOffset(offset);
    }
    return render ? render->renderVideo(picture) : nullptr;
  }

  platform::MediaLibrary& library;
  const std::string offset;
  std::unique_ptr<platform::FlatOffscreenRender> render = nullptr;  // for pictures as wide as the last one
  int width = 0;
};

PanoramaMaker::PanoramaMaker(platform::MediaLibrary& library, std::string offset)
    : state_(new State{library, std::move(offset)}) {}

PanoramaMaker::~PanoramaMaker() = default;

std::optional<Panorama> PanoramaMaker::panoramaOf(std::span<const std::uint8_t> photo, std::string& error) {
  const auto picture = pictureOfJpeg(photo, error);
  if (!picture) return std::nullopt;
  error.clear();
  const auto image = state_->stitched(picture);
  if (!image) return std::nullopt;
  error = "the panorama cannot be written as a JPEG file";
  const auto file = jpegOf(*image, kJpegQuality);
  const auto exif = exifSegmentIn(photo);
  const auto packet = panoramaPacket(image->width(), image->height(), directionIn(exif));
  if (!file || !packet) return std::nullopt;
  error.clear();
  const JpegBytes xmp = xmpSegmentOf(*packet);
  const std::vector<std::span<const std::uint8_t>> segments = {exif, xmp};
  return Panorama{withSegments(*file, segments), image->width(), image->height()};
}

}  // namespace zel

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include <ZELTarkaSDK/platform/media_library.h>
#include "apps/zelcam/jpeg_file.h"

namespace zel::app {

// A JPEG file, and the size of its picture.
struct PanoramaFile {
  JpegBytes bytes;
  int width = 0, height = 0;
};

// Makes panoramas from the camera's photos: equirectangular, as wide as the photo, with the photo's EXIF data and the
// XMP data for viewers.
// Owner:  the library must outlive the object.
// Thread: one at a time.
class PanoramaMaker {
 public:
  // offset: the camera's lens offset, as its text.
  PanoramaMaker(platform::MediaLibrary& library, std::string offset) : library_(library), offset_(std::move(offset)) {}

  // photo: the camera's JPEG file.
  // Errors: nothing; `error` then says what is wrong, and is empty if the renderer has reported it.
  std::optional<PanoramaFile> panoramaOf(std::span<const std::uint8_t> photo, std::string& error);

 private:
  platform::PixelBufferRef stitched(const platform::PixelBufferRef& picture);

  platform::MediaLibrary& library_;
  const std::string offset_;
  std::unique_ptr<platform::FlatOffscreenRender> render_;  // for the width of the last picture
  int width_ = 0;
};

}  // namespace zel::app

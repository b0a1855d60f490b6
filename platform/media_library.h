#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/pixel_buffer.h"

namespace zel::platform {

// Unwraps the camera's pictures.
// Thread: one at a time.
class FlatOffscreenRender {
 public:
  virtual ~FlatOffscreenRender() = default;

  // setOffset: - the camera's lens offset, as its text.
  virtual void setOffset(std::string_view offset) = 0;

  // renderVideo: - the flat image of one picture, in the size that was asked for.
  // Errors: null, as for an offset that makes no sense.
  virtual PixelBufferRef renderVideo(const PixelBufferRef& picture) = 0;
};

// Makes renderers.
// Owner:  must outlive them.
// Thread: any thread.
class MediaLibrary {
 public:
  virtual ~MediaLibrary() = default;

  // Units:  pixels of the flat image.
  // Errors: null for a size that cannot be rendered.
  virtual std::unique_ptr<FlatOffscreenRender> createFlatOffscreenRender(std::int32_t width, std::int32_t height) = 0;
};

}  // namespace zel::platform

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <ZELTarkaSDK/platform/pixel_buffer.h>

class ZELPreviewPlayer;

namespace zel::platform {

// A picture of red, green, blue and straight (not multiplied) alpha, a byte each, in rows from the top without gaps.
// Units:  pixels. A receiver ignores a picture whose size does not match `pixels`.
struct RgbaImage {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::vector<std::uint8_t> pixels;

  bool operator==(const RgbaImage&) const = default;
};

// A place on the screen.
// Units:  points.
struct Rectangle {
  double x = 0, y = 0, width = 0, height = 0;

  bool operator==(const Rectangle&) const = default;
};

// A graphics context of the graphics library; null is none.
using GraphicsContext = void*;

// Unwraps the camera's pictures. A renderer may keep the default of any operation that it does not need.
// Thread: one at a time, except where an operation says otherwise.
class FlatOffscreenRender {
 public:
  virtual ~FlatOffscreenRender() = default;

  // setOffset: - the camera's lens offset, as its text.
  virtual void setOffset(std::string_view offset) = 0;

  // setIsRenderVideo: - whether the pictures belong to a video; called before each picture of a video.
  virtual void setIsRenderVideo(bool) {}

  // setLogoAngle:, setLogoImage: - the logo at the nadir and its rotation.
  // Units:  degrees.
  virtual void setLogoAngle(float) {}
  virtual void setLogoImage(const std::optional<RgbaImage>&) {}

  // setRemovePurple: - whether purple fringes are removed, from the next picture on.
  // Thread: any thread, also while a picture is being rendered.
  virtual void setRemovePurple(bool) {}

  // glContext - makes the renderer's graphics context current on the calling thread, and returns the previous one.
  // restoreContext makes that one current again. A renderer without such a context does nothing.
  // Thread: any thread.
  virtual GraphicsContext makeContextCurrent() { return nullptr; }
  virtual void restoreContext(GraphicsContext) {}

  // renderVideo:, createPixelBufferFramRenderVideo: ("Fram" is the interface's spelling) - the flat image of one
  // picture, in the requested size.
  // Errors: null, for example for an invalid offset.
  virtual PixelBufferRef renderVideo(const PixelBufferRef& picture) = 0;
};

// Shows the camera's preview.
// Thread: any thread, one at a time.
class RenderView {
 public:
  virtual ~RenderView() = default;

  // playVideoStream:offset: - shows the player's pictures, unwrapped with that lens offset. player: null ends it.
  virtual void playVideoStream(std::shared_ptr<ZELPreviewPlayer> player, std::string_view offset) = 0;

  // The image that is shown; null before the first.
  // Thread: any thread.
  virtual PixelBufferRef picture() { return nullptr; }
};

// Creates renderers and views.
// Owner:  must outlive them.
// Thread: any thread.
class MediaLibrary {
 public:
  virtual ~MediaLibrary() = default;

  // Units:  pixels of the flat image.
  // Errors: null for a size that cannot be rendered.
  virtual std::unique_ptr<FlatOffscreenRender> createFlatOffscreenRender(std::int32_t width, std::int32_t height) = 0;

  // renderType: 0 is the only one in use.
  // Errors: null when the host has no view.
  virtual std::unique_ptr<RenderView> createRenderView(const Rectangle& /*frame*/, std::int32_t /*renderType*/) {
    return nullptr;
  }
};

}  // namespace zel::platform

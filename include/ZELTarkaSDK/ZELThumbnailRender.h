#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace zel::platform {
struct Ports;
}

// Decodes a short piece of H.264, a keyframe with its parameter sets, into one picture or one flat image. Nothing is
// kept between calls.
// Owner:  the ports must outlive the object.
// Thread: one at a time.
class ZEL_EXPORT ZELThumbnailRender {
 public:
  // initWithRenderWidth:height: - on the ports of the process-wide stack, or on any others.
  // Units:  pixels of the flat image.
  static std::unique_ptr<ZELThumbnailRender> initWithRenderWidth(std::int32_t width, std::int32_t height);
  static std::unique_ptr<ZELThumbnailRender> initWithRenderWidth(const zel::platform::Ports& ports, std::int32_t width,
                                                                 std::int32_t height);
  ~ZELThumbnailRender();
  ZELThumbnailRender(const ZELThumbnailRender&) = delete;
  ZELThumbnailRender& operator=(const ZELThumbnailRender&) = delete;

  std::int32_t width() const { return width_; }
  std::int32_t height() const { return height_; }
  void setWidth(std::int32_t width) { width_ = width; }
  void setHeight(std::int32_t height) { height_ = height; }

  // copyPixelBufferWithDecodeH264Data: - the last keyframe's picture. data: NAL units, each after a start code of 4
  // bytes.
  // Errors: null without data, without valid parameter sets before the keyframe, and for a picture that cannot be
  //         decoded.
  zel::platform::PixelBufferRef copyPixelBufferWithDecodeH264Data(const ZELData& data);

  // renderWithh264Data:offset: - the same picture, unwrapped. offset: the camera's lens offset, as its text.
  // Errors: null without an offset, without a picture, and when the host has no renderer.
  zel::platform::PixelBufferRef renderWithh264Data(const ZELData& data, const std::optional<std::string>& offset);

  // isInValid: ("InValid" is the interface's spelling) - whether a parameter set with this NAL header byte is ignored.
  static bool isInValid(std::uint8_t nalHeader);

 private:
  ZELThumbnailRender(const zel::platform::Ports& ports, std::int32_t width, std::int32_t height);

  const std::unique_ptr<const zel::platform::Ports> ports_;
  std::int32_t width_;
  std::int32_t height_;
};

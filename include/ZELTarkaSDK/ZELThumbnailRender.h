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

// Turns a short piece of H.264, a key frame with its parameter sets, into one picture or one flat image. Each call
// stands for itself; nothing is kept between two.
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

  // copyPixelBufferWithDecodeH264Data: - the last key frame's picture. data: units, each behind a start code of 4
  // bytes.
  // Errors: null, whatever is wrong: no data, no valid parameter sets before the key frame, a picture that cannot be
  //         decoded.
  zel::platform::PixelBufferRef copyPixelBufferWithDecodeH264Data(const ZELData& data);

  // renderWithh264Data:offset: - the same picture, unwrapped. offset: the camera's lens offset, as its text.
  // Errors: null without an offset, where there is no picture, and where the host renders nothing.
  zel::platform::PixelBufferRef renderWithh264Data(const ZELData& data, const std::optional<std::string>& offset);

  // isInValid: ("InValid" is the interface's spelling) - whether a parameter set with this NAL header byte is left out.
  static bool isInValid(std::uint8_t nalHeader);

 private:
  ZELThumbnailRender(const zel::platform::Ports& ports, std::int32_t width, std::int32_t height);

  const std::unique_ptr<const zel::platform::Ports> ports_;
  std::int32_t width_;
  std::int32_t height_;
};

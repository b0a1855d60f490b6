#pragma once

#include <cstdint>

#include <ZELTarkaSDK/platform/export.h>
#include <ZELTarkaSDK/platform/pixel_buffer.h>

// Receives decoded pictures.
class ZEL_EXPORT ZELPixelBufferDataProtocol {
 public:
  virtual ~ZELPixelBufferDataProtocol() = default;

  // onPixelBuffer:withTimesTamp: ("TimesTamp" is the interface's spelling) - one picture, in display order.
  // Units:  timestamp in milliseconds.
  // Owner:  keep the reference to keep the picture; it is not changed any more.
  // Thread: decode thread, which decodes the next unit only after the return. Do not poll the player from inside: its
  //         picture queue is locked during the call.
  virtual void onPixelBuffer(const zel::platform::PixelBufferRef& pixelBuffer, std::int64_t timestamp) = 0;
};

#pragma once

#include <cstdint>
#include <utility>

#include <ZELTarkaSDK/platform/pixel_buffer.h>

namespace orq {

// A decoded picture and its timestamp; shared.
// Units:  timestamp in milliseconds.
// Owner:  keeps the picture alive.
struct MediaPixelBuffer {
  MediaPixelBuffer(zel::platform::PixelBufferRef picture, std::int64_t time)
      : timestamp(time), pixelBuffer(std::move(picture)) {}

  const std::int64_t timestamp;
  const zel::platform::PixelBufferRef pixelBuffer;
};

}  // namespace orq

#pragma once

#include <cstdint>
#include <span>

#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// Receives the camera's preview: frames of types 1, 2 and 8, and the picture format of the resolution code.
// Owner:  the bytes are valid during the call only.
// Thread: session thread; the three setters on the thread that sets the resolution.
class ZEL_EXPORT PreviewConsumer {
 public:
  virtual ~PreviewConsumer() = default;
  virtual void appendVideoBytes(std::span<const std::uint8_t> bytes) = 0;
  virtual void appendAudioBytes(std::span<const std::uint8_t> bytes) = 0;
  virtual void setNextVideoTimestamp(std::int64_t timestamp) = 0;  // phone time, milliseconds
  virtual void setNextAudioTimestamp(std::int64_t timestamp) = 0;
  virtual void setImageWidth(std::int32_t width) = 0;
  virtual void setImageHeight(std::int32_t height) = 0;
  virtual void setFps(std::int32_t fps) = 0;
  virtual void resetPlayer() = 0;  // main queue: a new stream begins
};

}  // namespace zel

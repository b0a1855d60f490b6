#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <ZELTarkaSDK/PreviewFormat.h>
#include <ZELTarkaSDK/platform/media_library.h>

#include "base/shared_value.h"

namespace zel {

// Pictures a second of a camera's video resolution code. A code that is not known is deliberately left without any.
constexpr std::uint64_t framesPerSecond(std::uint64_t resolution) {
  const auto format = previewFormat(resolution);
  return format ? static_cast<std::uint64_t>(format->fps) : 0;
}

// The host's settings, and the camera's lens offset.
// Thread: any thread.
struct LiveSettings {
  LiveSettings(std::uint64_t resolutionCode, std::uint64_t stitchWidth, std::uint64_t stitchHeight,
               std::uint64_t encoderBitrate)
      : resolution(resolutionCode),
        width(stitchWidth),
        height(stitchHeight),
        bitrate(encoderBitrate),
        fps(framesPerSecond(resolutionCode)) {}

  Relaxed<std::uint64_t> resolution, width, height, bitrate, fps;
  Relaxed<bool> isStitch = true;
  Relaxed<bool> isEncode = true;
  Relaxed<bool> removePurple = false;
  Relaxed<float> logoAngle = 0;
  Guarded<std::optional<platform::RgbaImage>> logoImage;
  Guarded<std::optional<std::string>> offset;
  Guarded<std::optional<std::string>> url;
};

}  // namespace zel

#pragma once

#include <ZELTarkaSDK/ZELData.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace zel::app {

// The pictures' colour description: numbers of ITU-T H.273, all specified.
struct VideoColour {
  bool fullRange = false;
  std::uint8_t primaries = 6, transfer = 6, matrix = 6;  // BT.601

  bool operator==(const VideoColour&) const = default;
};

// The data that an output needs before the first packet. Parameter sets without start code; the sound is AAC.
// Units:  pixels.
struct StreamHeaders {
  ZELData sps;
  ZELData pps;
  ZELData audioConfig;  // AudioSpecificConfig
  std::int32_t width = 0;
  std::int32_t height = 0;
  bool spherical = false;  // the pictures are equirectangular, 360 degrees
  VideoColour colour = {};

  bool operator==(const StreamHeaders&) const = default;
};

enum class Track { video, audio };

// One picture with four-byte start codes, or one AAC frame without header.
// Units:  microseconds, the time since the first picture.
struct MediaPacket {
  Track track = Track::video;
  bool key = false;  // a keyframe (IDR)
  std::int64_t time = 0;
  ZELData data;
  std::optional<std::chrono::steady_clock::time_point> arrival;  // when the camera's picture arrived
  std::int64_t length = 0;                                       // until the next picture; 0 if unknown
};

// An error as a sentence for people; nothing on success.
using Fault = std::optional<std::string>;

}  // namespace zel::app

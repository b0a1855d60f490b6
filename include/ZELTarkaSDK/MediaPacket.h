#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include <ZELTarkaSDK/ZELData.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// How the samples of the pictures become colours: code points of ITU-T H.273, where no field is "unspecified".
struct ZEL_EXPORT VideoColour {
  bool fullRange = false;
  std::uint8_t primaries = 6, transfer = 6, matrix = 6;  // BT.601

  bool operator==(const VideoColour&) const = default;
};

// What a receiver must know before the first packet. The parameter sets have no start code; the sound is AAC-LC.
//
// Units: pixels.
struct ZEL_EXPORT StreamHeaders {
  ZELData sps;
  ZELData pps;
  ZELData audioConfig;  // AudioSpecificConfig, see AudioConfig.h
  std::int32_t width = 0;
  std::int32_t height = 0;
  bool spherical = false;  // the pictures are equirectangular and show the whole sphere
  VideoColour colour = {};

  bool operator==(const StreamHeaders&) const = default;
};

enum class Track { video, audio };

// One whole picture, all its slices with start codes of four bytes, or one AAC frame without ADTS header.
//
// Units: microseconds since the stream's first picture.
struct ZEL_EXPORT MediaPacket {
  Track track = Track::video;
  bool key = false;  // a picture from which decoding can begin
  std::int64_t time = 0;
  ZELData data;
  std::optional<std::chrono::steady_clock::time_point> arrival;  // when the camera's picture came
  std::int64_t length = 0;     // until the next picture; 0 where that is not known, as in every packet of EncodedStream
  bool discontinuity = false;  // the first of its track after a new connection, or after the camera's clock was set
};

}  // namespace zel

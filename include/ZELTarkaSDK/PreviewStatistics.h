#pragma once

#include <cstdint>

#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// Counters of a preview's encoded pictures, since its player was made.
// Units:  NAL units that hold a picture or a slice of one.
struct ZEL_EXPORT PreviewStatistics {
  std::uint64_t units = 0;           // received for decoding
  std::uint64_t dropped = 0;         // of those, dropped because too many were queued
  std::uint64_t withoutPicture = 0;  // of those, without a picture: broken, before a keyframe, or incomplete
  std::uint64_t pictures = 0;        // of those, decoded to a picture
};

}  // namespace zel

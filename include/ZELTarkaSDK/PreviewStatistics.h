#pragma once

#include <cstdint>

#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// What has become of a preview's encoded pictures, since its player was made.
// Units:  units of the stream that hold a picture or a slice of one.
struct ZEL_EXPORT PreviewStatistics {
  std::uint64_t units = 0;           // that came to be decoded
  std::uint64_t dropped = 0;         // of those, never decoded, since too many waited
  std::uint64_t withoutPicture = 0;  // of those, decoded to nothing: broken, or waiting for a key frame or more slices
  std::uint64_t pictures = 0;        // of those, decoded to a picture
};

}  // namespace zel

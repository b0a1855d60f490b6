#pragma once

#include <cstdint>
#include <optional>

#include <ZELTarkaSDK/EncodedStreamStatistics.h>
#include <ZELTarkaSDK/LinkStatistics.h>
#include <ZELTarkaSDK/LinkStatus.h>
#include <ZELTarkaSDK/PreviewStatistics.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// What a camera object has counted up to a moment, so that the difference of two makes a rate.
//
// Units: milliseconds since 1 January 2001 UTC, by the host's clock; see the parts.
struct ZEL_EXPORT CameraStatistics {
  std::int64_t time = 0;
  LinkStatus status = LinkStatus::closed;
  std::int64_t clockOffset = 0;  // milliseconds from the camera's clock to the host's; 0 where it is not known
  LinkStatistics link;
  PreviewStatistics preview;                           // of all previews and streams of the camera object
  std::optional<EncodedStreamStatistics> stream = {};  // of the one that runs; nothing: there is none
};

}  // namespace zel

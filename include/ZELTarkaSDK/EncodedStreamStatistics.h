#pragma once

#include <cstdint>
#include <optional>

#include <ZELTarkaSDK/LiveStatistics.h>
#include <ZELTarkaSDK/PreviewStatistics.h>
#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// What has become of the camera's pictures and sound, over all runs of an encoded stream.
//
// Units: microseconds, bytes.
struct ZEL_EXPORT EncodedStreamStatistics {
  PreviewStatistics preview;  // before they were decoded; of the camera's own stream the units alone
  LiveStatistics live;        // while they were stitched and encoded; zeros for the camera's own stream

  // Handed to the receiver.
  std::uint64_t pictures = 0, audioFrames = 0;
  std::uint64_t videoBytes = 0, audioBytes = 0;
  std::optional<std::int64_t> newestVideo, newestAudio;  // their times
  std::uint64_t droppedAudio = 0;  // frames that came before a run's first picture and were not heard with it either

  bool complete = false;  // as long as was asked for
};

}  // namespace zel

#pragma once

#include <cstdint>

#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// Counters of a live data source's pictures and sound, over all its runs.
struct ZEL_EXPORT LiveStatistics {
  std::uint64_t pictures = 0;                // decoded pictures received
  std::uint64_t notWanted = 0;               // of these: while stopped, before the first sound, or older than it
  std::uint64_t droppedBeforeStitching = 0;  // the oldest of six
  std::uint64_t notStitched = 0;
  std::uint64_t stitched = 0;
  std::uint64_t droppedBeforeEncoding = 0;  // the oldest of six
  std::uint64_t notEncoded = 0;             // after all attempts
  std::uint64_t encoded = 0;
  std::uint64_t units = 0;         // H.264 units delivered
  std::uint64_t droppedUnits = 0;  // held back before the stream's headers, or too short
  std::uint64_t audioFrames = 0;   // AAC frames delivered
  std::uint64_t droppedAudio = 0;  // held back before the stream's headers

  bool operator==(const LiveStatistics&) const = default;
};

}  // namespace zel

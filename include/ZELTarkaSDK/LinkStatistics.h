#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include <ZELTarkaSDK/platform/export.h>

namespace zel {

// Data types of the wire frame. Any other number is counted under `other`.
enum class FrameType : std::uint16_t {
  other = 0,
  previewVideo = 1,
  previewAudio = 2,
  photo = 3,
  message = 4,
  registered = 7,
  timestamp = 8,
  file = 9,
};

inline constexpr std::size_t kFrameTypeCount = 10;  // indices 0 to 9; 5 and 6 stay empty

// Frames that were dropped, by cause. They still count as received.
struct ZEL_EXPORT DroppedFrames {
  std::uint64_t unknownType = 0;           // an unknown data type
  std::uint64_t noConsumer = 0;            // no preview player, photo parser or file transfer takes it
  std::uint64_t unregisteredCode = 0;      // a message code without a reply record
  std::uint64_t shortMessage = 0;          // a message too short for its code
  std::uint64_t unregisteredData = 0;      // data of type 7 without a registered receiver
  std::uint64_t shortTimestamp = 0;        // a timestamp frame below 9 bytes
  std::uint64_t timestampOldFirmware = 0;  // a timestamp frame from firmware below 190
  std::uint64_t noMemory = 0;              // its consumer found no memory for it
};

// Counters of one camera stack's link, since the stack was made.
// Units:  frames; bytes of whole frames, headers included; milliseconds.
struct ZEL_EXPORT LinkStatistics {
  std::array<std::uint64_t, kFrameTypeCount> frames{};  // by data type, see FrameType
  std::array<std::uint64_t, kFrameTypeCount> bytes{};
  DroppedFrames dropped;
  std::uint64_t bytesReceived = 0;   // all bytes read from the stream
  std::uint64_t bytesDiscarded = 0;  // bytes discarded before a marker, without the marker itself
  std::uint64_t bytesWritten = 0;    // bytes that the stream to the camera has taken
  std::uint64_t bytesToWrite = 0;    // bytes queued for the camera that the stream has not taken yet
  std::uint64_t markersFound = 0;    // how often the stream was synchronised
  std::uint64_t positionsLost = 0;   // impossible frame lengths, each of which reopened the session
  std::uint64_t streamErrors = 0;    // stream errors, each of which reopened the session
  std::int64_t roundTrip = -1;       // of the last time synchronisation; -1 before the first
  std::int32_t resendsLeft = 0;      // time-synchronisation re-sends left to this stack
  std::uint64_t lostForMemory = 0;   // requests and answers for which there was no memory, and nobody could be told
};

}  // namespace zel

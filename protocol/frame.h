#pragma once

#include <cstddef>
#include <cstdint>

#include <ZELTarkaSDK/LinkStatistics.h>
#include <ZELTarkaSDK/WireConstants.h>

#include "base/wire.h"

namespace zel {

// The wire frame, all fields little-endian, nothing between frames:
//
//   0        4       6                     length
//   +--------+-------+---------------------+
//   | length | type  | payload             |
//   +--------+-------+---------------------+
//
// `length` counts the whole frame, its own 6 header bytes included. The payload of a message (type 4) starts with a
// 2-byte message code; the body follows.
inline constexpr std::size_t kFrameHeader = 4 + 2;               // length, data type
inline constexpr std::size_t kMessageHeader = kFrameHeader + 2;  // and the message code
inline constexpr std::size_t kTimestampPayload = 1 + 8;          // stream flag, milliseconds

// No camera sends a larger frame; a larger length means that the position in the stream is lost.
inline constexpr std::uint32_t kMaxFrameLength = 256u * 1024 * 1024;

// The time synchronisation, the only message that the link itself uses.
inline constexpr std::uint16_t kSyncTimeRequest = 0x4049;
inline constexpr std::uint16_t kSyncTimeReply = 0xC049;

// A frame of type 4: header, code, body. The length is computed in 32 bits, as the wire has it.
inline Bytes messageFrame(std::uint16_t code, ByteView body) {
  Bytes frame;
  frame.reserve(kMessageHeader + body.size());
  appendLittleEndian(frame, static_cast<std::uint32_t>(kMessageHeader + body.size()));
  appendLittleEndian(frame, static_cast<std::uint16_t>(FrameType::message));
  appendLittleEndian(frame, code);
  frame.insert(frame.end(), body.begin(), body.end());
  return frame;
}

}  // namespace zel

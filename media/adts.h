#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/wire.h"

namespace zel {

// The header of an ADTS frame, from its third byte on; bits from the highest to the lowest:
//
//   byte 2            byte 3            byte 4       byte 5
//   pp ffff r c       cc ---- ll        llllllll     lll-----
//   profile           channels          frame length, header included
//     frequency
//        channels' highest bit is c
inline constexpr std::size_t kAdtsHeader = 7;

// Length of the frame that begins here. The frame must hold at least the seven header bytes.
constexpr std::size_t adtsFrameLength(ByteView frame) {
  return std::size_t{frame[3] & 0x03u} << 11 | std::size_t{frame[4]} << 3 | std::size_t{frame[5]} >> 5;
}

// The AudioSpecificConfig of such a frame.
// Deliberate: the object type is written as twice the profile, which is right for AAC-LC, the only profile that the
// camera sends.
constexpr std::array<std::uint8_t, 2> audioSpecificConfig(ByteView frame) {
  const unsigned b2 = frame[2], b3 = frame[3];
  const unsigned channels = (b2 & 1) << 2 | b3 >> 6;
  return {static_cast<std::uint8_t>((b2 >> 2 & 0x30) | (b2 >> 3 & 0x07)),
          static_cast<std::uint8_t>((b2 << 5 & 0x80) | channels << 3)};
}

// Calls `each` with every complete frame. Fewer than eight bytes hold none.
template <class Each>
void forEachAdtsFrame(ByteView bytes, Each&& each) {
  if (bytes.size() < kAdtsHeader + 1) return;
  while (bytes.size() >= kAdtsHeader) {
    const std::size_t length = adtsFrameLength(bytes);
    // A frame of length 0 would be found at the same position forever.
    if (length == 0 || length > bytes.size()) return;
    each(bytes.first(length));
    bytes = bytes.subspan(length);
  }
}

}  // namespace zel

#pragma once

#include <cstddef>
#include <cstdint>

#include "base/wire.h"

namespace zel {

// A unit as it travels along the preview: four bytes of start code or of length, the NAL header, the rest.
inline constexpr std::size_t kNalHeaderAt = 4;

enum class NalType : std::uint8_t { slice = 1, idrSlice = 5, sps = 7, pps = 8 };

constexpr NalType nalType(std::uint8_t header) { return static_cast<NalType>(header & 0x1F); }

constexpr bool isIdr(ByteView unit) {
  return unit.size() > kNalHeaderAt && nalType(unit[kNalHeaderAt]) == NalType::idrSlice;
}

// Whether a parameter set may bear this header: the forbidden bit is 0, the reference indicator is not.
constexpr bool isValidParameterSetHeader(std::uint8_t header) { return (header & 0x80) == 0 && (header & 0x60) != 0; }

// Overwrites the first four bytes with the length of the rest, highest byte first. The unit holds at least these four.
inline void writeLengthPrefix(std::uint8_t* unit, std::size_t size) {
  const std::size_t length = size - kNalHeaderAt;
  for (std::size_t i = 0; i < kNalHeaderAt; ++i) unit[i] = static_cast<std::uint8_t>(length >> (8 * (3 - i)));
}

}  // namespace zel

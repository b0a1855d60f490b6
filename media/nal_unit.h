#pragma once

#include <cstddef>
#include <cstdint>

#include "base/wire.h"

namespace zel {

// A NAL unit in the preview: four bytes of start code or length, the NAL header, the payload.
inline constexpr std::size_t kNalHeaderAt = 4;

enum class NalType : std::uint8_t { slice = 1, idrSlice = 5, sps = 7, pps = 8 };

constexpr NalType nalType(std::uint8_t header) { return static_cast<NalType>(header & 0x1F); }

constexpr bool isIdr(ByteView unit) {
  return unit.size() > kNalHeaderAt && nalType(unit[kNalHeaderAt]) == NalType::idrSlice;
}

// Whether this header is valid for a parameter set: forbidden_zero_bit is 0, nal_ref_idc is not.
constexpr bool isValidParameterSetHeader(std::uint8_t header) { return (header & 0x80) == 0 && (header & 0x60) != 0; }

// Overwrites the first four bytes with the big-endian length of the rest. The unit has at least these four bytes.
inline void writeLengthPrefix(std::uint8_t* unit, std::size_t size) {
  const std::size_t length = size - kNalHeaderAt;
  for (std::size_t i = 0; i < kNalHeaderAt; ++i) unit[i] = static_cast<std::uint8_t>(length >> (8 * (3 - i)));
}

}  // namespace zel

#pragma once

#include <span>
#include <vector>

#include "simulator/wire.h"

namespace zel::simulator {

// All units of one picture with the parameter sets and other units before it, as they stand in the stream.
struct VideoPicture {
  Bytes bytes;
  bool key = false;  // decoding can begin here
};

// A unit within a stream.
// Units:  bytes from the stream's beginning.
struct UnitPlace {
  std::size_t begin = 0;   // of the start code, with the zero of a code of four bytes
  std::size_t header = 0;  // of the unit's own first byte
  std::size_t end = 0;
};

// Start codes of three and four bytes alike. Bytes before the first start code belong to no unit.
std::vector<UnitPlace> unitsIn(std::span<const std::uint8_t> stream);

inline int unitType(std::span<const std::uint8_t> stream, const UnitPlace& unit) { return stream[unit.header] & 0x1F; }

// Whether units of that type carry picture data.
bool isSlice(int type);

// The stream cut between pictures; nothing is added or left out but what stands before the first start code.
// Errors: no pictures for bytes that hold no slice.
std::vector<VideoPicture> picturesIn(std::span<const std::uint8_t> stream);

}  // namespace zel::simulator

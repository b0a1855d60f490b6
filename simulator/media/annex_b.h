#pragma once

#include <span>
#include <vector>

#include "simulator/wire.h"

namespace zel::simulator {

// All NAL units of one picture (access unit), including the parameter sets and other units before it, unchanged.
struct VideoPicture {
  Bytes bytes;
  bool key = false;  // IDR
};

// A unit within a stream.
// Units:  bytes from the stream's beginning.
struct UnitPlace {
  std::size_t begin = 0;   // of the start code, with the zero of a code of four bytes
  std::size_t header = 0;  // of the unit's own first byte
  std::size_t end = 0;
};

// Recognises start codes of three and four bytes. Bytes before the first start code belong to no unit.
std::vector<UnitPlace> unitsIn(std::span<const std::uint8_t> stream);

inline int unitType(std::span<const std::uint8_t> stream, const UnitPlace& unit) { return stream[unit.header] & 0x1F; }

// Whether units of that type carry picture data.
bool isSlice(int type);

// The stream cut between pictures, unchanged except for bytes before the first start code, which are left out.
// Errors: no pictures for bytes without a slice.
std::vector<VideoPicture> picturesIn(std::span<const std::uint8_t> stream);

}  // namespace zel::simulator

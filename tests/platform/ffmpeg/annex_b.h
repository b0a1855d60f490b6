#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace zel::test {

using Unit = std::vector<std::uint8_t>;  // from the header byte on

inline int typeOf(const Unit& unit) { return unit.empty() ? -1 : unit[0] & 0x1F; }

// The units between start codes of three or four bytes.
inline std::vector<Unit> unitsOf(const std::vector<std::uint8_t>& stream) {
  const std::uint8_t code[] = {0, 0, 1};
  std::vector<Unit> units;
  auto at = std::search(stream.begin(), stream.end(), std::begin(code), std::end(code));
  while (at != stream.end()) {
    const auto begin = at + 3;
    at = std::search(begin, stream.end(), std::begin(code), std::end(code));
    auto end = at;
    while (end != begin && end != stream.end() && *(end - 1) == 0) --end;
    units.emplace_back(begin, end);
  }
  return units;
}

// The same stream with start codes of four bytes alone.
inline std::vector<std::uint8_t> withLongStartCodes(const std::vector<std::uint8_t>& stream) {
  std::vector<std::uint8_t> bytes;
  for (const Unit& unit : unitsOf(stream)) {
    bytes.insert(bytes.end(), {0, 0, 0, 1});
    bytes.insert(bytes.end(), unit.begin(), unit.end());
  }
  return bytes;
}

// As decoders take it: a 4-byte big-endian length before the unit.
inline std::vector<std::uint8_t> lengthPrefixed(const Unit& unit) {
  std::vector<std::uint8_t> bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<std::uint8_t>(unit.size() >> shift));
  bytes.insert(bytes.end(), unit.begin(), unit.end());
  return bytes;
}

}  // namespace zel::test

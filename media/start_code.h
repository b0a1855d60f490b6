#pragma once

#include <cstddef>
#include <cstdint>

namespace zel {

// The bytes that begin a unit; the form of three bytes is known nowhere.
inline constexpr std::size_t kStartCodeSize = 4;

// Whether the four bytes 00 00 00 01 stand there.
inline bool isStartCode(const std::uint8_t* bytes) {
  return bytes[0] == 0 && bytes[1] == 0 && bytes[2] == 0 && bytes[3] == 1;
}

// The first position from `first` on and below `end` at which a start code stands; `end` where there is none. Reads up
// to three bytes from `end` on.
const std::uint8_t* findStartCode(const std::uint8_t* first, const std::uint8_t* end);

// The same, and what stands before it is copied on the way, each byte while it is at hand. `to` has room for all bytes
// up to `end`, elsewhere; what it holds behind the copy is undefined.
const std::uint8_t* copyToStartCode(const std::uint8_t* first, const std::uint8_t* end, std::uint8_t* to);

}  // namespace zel

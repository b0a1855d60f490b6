#pragma once

#include <cstddef>
#include <cstdint>

namespace zel {

// The bytes 00 00 00 01 that begin a NAL unit. Three-byte start codes are deliberately not recognised.
inline constexpr std::size_t kStartCodeSize = 4;

inline bool isStartCode(const std::uint8_t* bytes) {
  return bytes[0] == 0 && bytes[1] == 0 && bytes[2] == 0 && bytes[3] == 1;
}

// The first start code in [first, end); `end` when there is none. Reads up to three bytes from `end` on.
const std::uint8_t* findStartCode(const std::uint8_t* first, const std::uint8_t* end);

// The same, and copies the bytes before it to `to` in the same pass. `to` has space for all bytes up to `end` and does
// not overlap them; bytes after the copy are undefined.
const std::uint8_t* copyToStartCode(const std::uint8_t* first, const std::uint8_t* end, std::uint8_t* to);

}  // namespace zel

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace zel {

// One box of an MP4 file: the positions of its begin, its content and its end.
struct Mp4Box {
  std::uint32_t type = 0;
  std::size_t begin = 0, content = 0, end = 0;
};

constexpr std::uint32_t boxType(std::string_view name) {
  std::uint32_t type = 0;
  for (const char letter : name) type = type << 8 | static_cast<unsigned char>(letter);
  return type;
}

// The number of that many bytes, big-endian.
std::uint64_t numberAt(std::span<const std::uint8_t> bytes, std::size_t at, std::size_t size);

// The consecutive boxes in bytes[from, to).
// Errors: nothing if they do not fill it exactly.
std::optional<std::vector<Mp4Box>> boxesIn(std::span<const std::uint8_t> bytes, std::size_t from, std::size_t to);

// Adds that many bytes to every chunk offset. moov: one whole box.
// Errors: false if it is no such box, or an offset would overflow.
bool moveChunks(std::span<std::uint8_t> moov, std::uint64_t shift);

// Adds the spherical metadata box, version 1, to the video track: stitched, equirectangular.
// Errors: false if it is no such box, or has no video; it is then unchanged.
bool addSphericalBox(std::vector<std::uint8_t>& moov);

}  // namespace zel

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace zel {

// One box of an MP4 file: where it begins, where its content does, and where it ends.
struct Mp4Box {
  std::uint32_t type = 0;
  std::size_t begin = 0, content = 0, end = 0;
};

constexpr std::uint32_t boxType(std::string_view name) {
  std::uint32_t type = 0;
  for (const char letter : name) type = type << 8 | static_cast<unsigned char>(letter);
  return type;
}

// The boxes that stand side by side in bytes[from, to).
// Errors: nothing where they do not fill it exactly.
std::optional<std::vector<Mp4Box>> boxesIn(std::span<const std::uint8_t> bytes, std::size_t from, std::size_t to);

// Makes every chunk's place in the file that many bytes later. moov: one whole box.
// Errors: false where it is no such box, or a place would not fit.
bool moveChunks(std::span<std::uint8_t> moov, std::uint64_t shift);

// Puts the box of spherical metadata, version 1, into the video's track: stitched, equirectangular.
// Errors: false where it is no such box, or has no video; it is then as it was.
bool addSphericalBox(std::vector<std::uint8_t>& moov);

}  // namespace zel

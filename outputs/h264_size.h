#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace zel {

// Units:  pixels.
struct PictureSize {
  std::int32_t width = 0, height = 0;

  bool operator==(const PictureSize&) const = default;
};

// The size of the pictures, from the parameter sets and a first unit with its start code.
// Errors: nothing if they are inconsistent.
std::optional<PictureSize> sizeOfPictures(std::span<const std::uint8_t> sps, std::span<const std::uint8_t> pps,
                                          std::span<const std::uint8_t> unit);

}  // namespace zel

#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace zel::app {

// Units:  pixels.
struct PictureSize {
  std::int32_t width = 0, height = 0;

  bool operator==(const PictureSize&) const = default;
};

// The size of the pictures, as the parameter sets and a first unit behind its start code tell it.
// Errors: nothing where they make no sense together.
std::optional<PictureSize> sizeOfPictures(std::span<const std::uint8_t> sps, std::span<const std::uint8_t> pps,
                                          std::span<const std::uint8_t> unit);

}  // namespace zel::app

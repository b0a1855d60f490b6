#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include <ZELTarkaSDK/MediaPacket.h>

namespace zel {

// The colours that an SPS declares, with defaults for undeclared ones: limited range, BT.601, and the values that
// belong to the matrix. The decoder uses the same defaults, so that a file looks like a snapshot.
VideoColour colourOfPictures(std::span<const std::uint8_t> sps);

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

#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zel::app {

// Units: pixels.
struct PictureSize {
  std::int32_t width = 0, height = 0;
};

inline constexpr std::int32_t kLargestPictureSide = 16384;

// "1440x720": each side even and from 2 to kLargestPictureSide.
// Errors: nothing for anything else.
std::optional<PictureSize> pictureSizeIn(std::string_view text);

}  // namespace zel::app

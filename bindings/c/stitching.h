#pragma once

#include <ZELTarkaSDK/platform/media_library.h>

#include <cstdint>
#include <optional>
#include <utility>

namespace zel::c {

// The width and height of stitched pictures; the default ones for 0 and 0.
//
// Errors: refused unless both are even numbers above 0.
std::pair<std::int32_t, std::int32_t> stitchedSize(std::int32_t width, std::int32_t height);

// The logo at the nadir; nothing for NULL.
//
// Errors: refused for a side that is not from 1 to 8192.
std::optional<platform::RgbaImage> logoOf(const std::uint8_t* pixels, std::int32_t width, std::int32_t height);

}  // namespace zel::c

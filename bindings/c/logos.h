#pragma once

#include <ZELTarkaSDK/platform/media_library.h>

#include <cstdint>
#include <optional>

namespace zel::c {

// The logo at the nadir; nothing for NULL.
//
// Errors: refused for a side that is not from 1 to 8192.
std::optional<platform::RgbaImage> logoOf(const std::uint8_t* pixels, std::int32_t width, std::int32_t height);

}  // namespace zel::c

#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace zel {

// Where a photo looks, by the GPSImgDirection of its EXIF data: degrees from true north by east, from 0 to below 360.
// exif: a segment as exifSegmentIn() finds it, or nothing.
// Errors: nothing where the data do not tell, or tell a direction from magnetic north, which is another one.
std::optional<double> directionIn(std::span<const std::uint8_t> exif);

}  // namespace zel

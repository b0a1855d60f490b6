#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace zel {

// The direction of a photo from GPSImgDirection in its EXIF data: degrees clockwise from true north, 0 to below 360.
// exif: the result of exifSegmentIn(), may be empty.
// Errors: nothing if the data have no direction, or one from magnetic north.
std::optional<double> directionIn(std::span<const std::uint8_t> exif);

}  // namespace zel

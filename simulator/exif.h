#pragma once

#include <optional>
#include <span>
#include <string>

#include "simulator/wire.h"

namespace zel::simulator {

// Where a picture was taken.
// Units:  degrees, degrees, metres.
struct Position {
  double latitude = 0, longitude = 0, altitude = 0;
};

// The position in a GPS record.
// Errors: nothing for zeros, which a host without GPS sends, and for coordinates out of range.
std::optional<Position> positionIn(std::span<const std::uint8_t> gpsRecord);

// The EXIF segment of a JPEG file with time and position. localTime: "2026:01:02 03:04:05".
Bytes exifSegment(const std::string& localTime, const std::optional<Position>& position);

// The file with the segment as its first one.
// Errors: the unchanged file if it is too short for a JPEG file.
Bytes withSegment(const Bytes& file, const Bytes& segment);

}  // namespace zel::simulator

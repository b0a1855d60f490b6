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
// Errors: nothing for one of zeros, which a host without GPS sends, and for numbers that are no place on earth.
std::optional<Position> positionIn(std::span<const std::uint8_t> gpsRecord);

// The segment of a JPEG file that tells when and where its picture was taken. localTime: "2026:01:02 03:04:05".
Bytes exifSegment(const std::string& localTime, const std::optional<Position>& position);

// The file with the segment as its first one.
// Errors: the file as it is where it is too short for a JPEG file.
Bytes withSegment(const Bytes& file, const Bytes& segment);

}  // namespace zel::simulator

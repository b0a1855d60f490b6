#include "pictures/exif_direction.h"

#include <algorithm>
#include <cstddef>

namespace zel {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kBeforeTiff = 2 + 2 + 6;  // marker, length, "Exif" and two zeros
constexpr std::size_t kEntry = 2 + 2 + 4 + 4;   // tag, type, count, value or its place
constexpr std::uint32_t kTiff = 42;
constexpr std::uint32_t kText = 2, kLong = 4, kRational = 5;
constexpr std::uint32_t kPlaceOfGps = 0x8825, kDirectionsNorth = 0x0010, kDirection = 0x0011;

// A reader of EXIF data: directories of entries, in the byte order of the first two bytes. Bytes outside are read as
// zeros, which are not a valid entry.
class Tiff {
 public:
  explicit Tiff(Bytes bytes) : bytes_(bytes), bigEndian_(!bytes.empty() && bytes[0] == 'M') {}

  std::uint32_t number(std::size_t at, std::size_t size) const {
    if (at > bytes_.size() || bytes_.size() - at < size) return 0;
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) value = value << 8 | bytes_[at + (bigEndian_ ? i : size - 1 - i)];
    return value;
  }

  // The position of that entry's value in the directory; 0 without an entry of that type and count.
  std::size_t find(std::size_t directory, std::uint32_t tag, std::uint32_t type, std::uint32_t count) const {
    const std::size_t entries = directory == 0 ? 0 : number(directory, 2);
    for (std::size_t i = 0; i < entries; ++i) {
      const std::size_t entry = directory + 2 + i * kEntry;
      if (number(entry, 2) != tag) continue;
      return number(entry + 2, 2) == type && number(entry + 4, 4) == count ? entry + 8 : 0;
    }
    return 0;
  }

 private:
  const Bytes bytes_;
  const bool bigEndian_;
};

}  // namespace

std::optional<double> directionIn(Bytes exif) {
  const Tiff tiff(exif.subspan(std::min(kBeforeTiff, exif.size())));
  if (tiff.number(2, 2) != kTiff) return std::nullopt;
  const std::size_t gpsAt = tiff.find(tiff.number(4, 4), kPlaceOfGps, kLong, 1);
  const std::size_t gps = gpsAt == 0 ? 0 : tiff.number(gpsAt, 4);
  const std::size_t north = tiff.find(gps, kDirectionsNorth, kText, 2);
  const std::size_t directionAt = tiff.find(gps, kDirection, kRational, 1);
  if (north == 0 || directionAt == 0 || tiff.number(north, 1) != 'T') return std::nullopt;
  const std::size_t direction = tiff.number(directionAt, 4);
  const std::uint32_t above = tiff.number(direction, 4), below = tiff.number(direction + 4, 4);
  if (below == 0 || above / below >= 360) return std::nullopt;
  return static_cast<double>(above) / below;
}

}  // namespace zel

#include "simulator/media/annex_b.h"

namespace zel::simulator {
namespace {

using Stream = std::span<const std::uint8_t>;

constexpr int kSlice = 1, kKeySlice = 5, kEnhancement = 6, kDelimiter = 9;

// A slice with first_mb_in_slice 0, which is a single 1 bit.
bool beginsWithFirstMacroblock(Stream stream, const UnitPlace& unit) {
  return unit.header + 1 < unit.end && (stream[unit.header + 1] & 0x80) != 0;
}

// Whether a unit after a slice belongs to the next picture.
bool beginsPicture(Stream stream, const UnitPlace& unit) {
  const int type = unitType(stream, unit);
  return isSlice(type) ? beginsWithFirstMacroblock(stream, unit) : type >= kEnhancement && type <= kDelimiter;
}

std::size_t nextCode(Stream stream, std::size_t from) {
  for (std::size_t at = from; at + 3 < stream.size(); ++at)
    if (stream[at] == 0 && stream[at + 1] == 0 && stream[at + 2] == 1) return at;
  return stream.size();
}

}  // namespace

bool isSlice(int type) { return type >= kSlice && type <= kKeySlice; }

std::vector<UnitPlace> unitsIn(Stream stream) {
  std::vector<UnitPlace> units;
  for (std::size_t code = nextCode(stream, 0); code < stream.size(); code = nextCode(stream, code + 3)) {
    const std::size_t begin = code > 0 && stream[code - 1] == 0 ? code - 1 : code;
    if (!units.empty()) units.back().end = begin;
    units.push_back({begin, code + 3, stream.size()});
  }
  return units;
}

std::vector<VideoPicture> picturesIn(Stream stream) {
  std::vector<VideoPicture> pictures;
  bool sliceSeen = true;  // in the current picture
  for (const UnitPlace& unit : unitsIn(stream)) {
    if (sliceSeen && (pictures.empty() || beginsPicture(stream, unit))) {
      pictures.emplace_back();
      sliceSeen = false;
    }
    VideoPicture& picture = pictures.back();
    picture.bytes.insert(picture.bytes.end(), stream.begin() + static_cast<std::ptrdiff_t>(unit.begin),
                         stream.begin() + static_cast<std::ptrdiff_t>(unit.end));
    sliceSeen = sliceSeen || isSlice(unitType(stream, unit));
    picture.key = picture.key || unitType(stream, unit) == kKeySlice;
  }
  if (!sliceSeen) pictures.pop_back();  // parameter sets without a picture
  return pictures;
}

}  // namespace zel::simulator

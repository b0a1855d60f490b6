#include "outputs/mp4_boxes.h"

#include <algorithm>
#include <array>
#include <limits>

namespace zel {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kHeader = 4 + 4;           // size, type
constexpr std::size_t kLargeHeader = 4 + 4 + 8;  // 1, type, size
constexpr std::size_t kTableHeader = 1 + 3 + 4;  // version, flags, count
constexpr std::size_t kHandlerType = 1 + 3 + 4;  // of hdlr: version, flags, 0, then the type
constexpr std::uint32_t kMoov = boxType("moov"), kTrak = boxType("trak"), kMdia = boxType("mdia");

constexpr std::array<std::uint8_t, 16> kSphericalId = {0xFF, 0xCC, 0x82, 0x63, 0xF8, 0x55, 0x4A, 0x93,
                                                       0x88, 0x14, 0x58, 0x7A, 0x02, 0x52, 0x1F, 0xDD};
constexpr std::string_view kSphericalText =
    "<?xml version=\"1.0\"?>"
    "<rdf:SphericalVideo xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\" "
    "xmlns:GSpherical=\"http://ns.google.com/videos/1.0/spherical/\">"
    "<GSpherical:Spherical>true</GSpherical:Spherical>"
    "<GSpherical:Stitched>true</GSpherical:Stitched>"
    "<GSpherical:StitchingSoftware>zelcam</GSpherical:StitchingSoftware>"
    "<GSpherical:ProjectionType>equirectangular</GSpherical:ProjectionType>"
    "</rdf:SphericalVideo>";

void setNumber(std::span<std::uint8_t> bytes, std::size_t at, std::size_t size, std::uint64_t value) {
  for (std::size_t i = at + size; i-- > at; value >>= 8) bytes[i] = static_cast<std::uint8_t>(value & 0xFF);
}

std::optional<Mp4Box> boxAt(Bytes bytes, std::size_t at, std::size_t to) {
  if (to - at < kHeader) return std::nullopt;
  std::uint64_t size = numberAt(bytes, at, 4);
  std::size_t header = kHeader;
  if (size == 1) {
    header = kLargeHeader;
    if (to - at < header) return std::nullopt;
    size = numberAt(bytes, at + kHeader, 8);
  }
  if (size < header || size > to - at) return std::nullopt;
  return Mp4Box{static_cast<std::uint32_t>(numberAt(bytes, at + 4, 4)), at, at + header,
                at + static_cast<std::size_t>(size)};
}

// The first box of a type among consecutive boxes.
std::optional<Mp4Box> find(Bytes bytes, std::size_t from, std::size_t to, std::uint32_t type) {
  const auto boxes = boxesIn(bytes, from, to);
  if (!boxes) return std::nullopt;
  const auto found = std::ranges::find(*boxes, type, &Mp4Box::type);
  return found != boxes->end() ? std::optional(*found) : std::nullopt;
}

// The box at a path of types inside another one.
std::optional<Mp4Box> descend(Bytes bytes, Mp4Box box, std::initializer_list<std::uint32_t> path) {
  for (const std::uint32_t type : path) {
    const auto inner = find(bytes, box.content, box.end, type);
    if (!inner) return std::nullopt;
    box = *inner;
  }
  return box;
}

std::optional<Mp4Box> wholeMoov(Bytes moov) {
  const auto box = boxAt(moov, 0, moov.size());
  return box && box->type == kMoov && box->end == moov.size() ? box : std::nullopt;
}

std::optional<std::vector<Mp4Box>> tracksOf(Bytes moov) {
  const auto whole = wholeMoov(moov);
  auto boxes = whole ? boxesIn(moov, whole->content, whole->end) : std::nullopt;
  if (boxes) std::erase_if(*boxes, [](const Mp4Box& box) { return box.type != kTrak; });
  return boxes;
}

bool moveTable(std::span<std::uint8_t> moov, const Mp4Box& table, std::size_t width, std::uint64_t shift) {
  if (table.end - table.content < kTableHeader) return false;
  const std::uint64_t count = numberAt(moov, table.content + 4, 4);
  if (count > (table.end - table.content - kTableHeader) / width) return false;
  const std::uint64_t most =
      width == 4 ? std::numeric_limits<std::uint32_t>::max() : std::numeric_limits<std::int64_t>::max();
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t at = table.content + kTableHeader + i * width;
    const std::uint64_t place = numberAt(moov, at, width);
    if (shift > most || place > most - shift) return false;
    setNumber(moov, at, width, place + shift);
  }
  return true;
}

bool moveTrack(std::span<std::uint8_t> moov, const Mp4Box& track, std::uint64_t shift) {
  const auto samples = descend(moov, track, {kMdia, boxType("minf"), boxType("stbl")});
  if (!samples) return false;
  if (const auto table = find(moov, samples->content, samples->end, boxType("stco"))) {
    return moveTable(moov, *table, 4, shift);
  }
  const auto table = find(moov, samples->content, samples->end, boxType("co64"));
  return table && moveTable(moov, *table, 8, shift);
}

bool isVideo(Bytes moov, const Mp4Box& track) {
  const auto handler = descend(moov, track, {kMdia, boxType("hdlr")});
  if (!handler || handler->end - handler->content < kHandlerType + 4) return false;
  return numberAt(moov, handler->content + kHandlerType, 4) == boxType("vide");
}

std::vector<std::uint8_t> sphericalBox() {
  std::vector<std::uint8_t> box(kHeader);
  box.insert(box.end(), kSphericalId.begin(), kSphericalId.end());
  box.insert(box.end(), kSphericalText.begin(), kSphericalText.end());
  setNumber(box, 0, 4, box.size());
  setNumber(box, 4, 4, boxType("uuid"));
  return box;
}

}  // namespace

std::uint64_t numberAt(Bytes bytes, std::size_t at, std::size_t size) {
  std::uint64_t value = 0;
  for (std::size_t i = at; i < at + size; ++i) value = value << 8 | bytes[i];
  return value;
}

std::optional<std::vector<Mp4Box>> boxesIn(Bytes bytes, std::size_t from, std::size_t to) {
  std::vector<Mp4Box> boxes;
  while (from < to) {
    const auto box = boxAt(bytes, from, to);
    if (!box) return std::nullopt;
    boxes.push_back(*box);
    from = box->end;
  }
  return boxes;
}

bool moveChunks(std::span<std::uint8_t> moov, std::uint64_t shift) {
  const auto tracks = tracksOf(moov);
  if (!tracks) return false;
  for (const Mp4Box& track : *tracks) {
    if (!moveTrack(moov, track, shift)) return false;
  }
  return true;
}

bool addSphericalBox(std::vector<std::uint8_t>& moov) {
  const auto tracks = tracksOf(moov);
  if (!tracks) return false;
  for (const Mp4Box& track : *tracks) {
    if (!isVideo(moov, track) || numberAt(moov, track.begin, 4) == 1 || numberAt(moov, 0, 4) == 1) continue;
    const std::vector<std::uint8_t> box = sphericalBox();
    moov.insert(moov.begin() + static_cast<std::ptrdiff_t>(track.end), box.begin(), box.end());
    setNumber(moov, track.begin, 4, track.end - track.begin + box.size());
    setNumber(moov, 0, 4, moov.size());
    return true;
  }
  return false;
}

}  // namespace zel

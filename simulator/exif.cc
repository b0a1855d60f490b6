#include "simulator/exif.h"

#include <bit>
#include <cmath>
#include <cstddef>

namespace zel::simulator {
namespace {

constexpr std::uint16_t kByte = 1, kText = 2, kLong = 4, kRational = 5, kUndefined = 7;
constexpr std::size_t kInline = 4;      // bytes of a value that fit into its entry
constexpr std::uint32_t kHeader = 8;    // bytes before the first directory
constexpr double kHighest = 1'000'000;  // metres

struct Entry {
  std::uint16_t tag, type;
  std::uint32_t count;
  Bytes value;
};
using Directory = std::vector<Entry>;

Entry textEntry(std::uint16_t tag, const std::string& text) {
  return {tag, kText, static_cast<std::uint32_t>(text.size() + 1), textField(text, text.size() + 1)};
}

void putRational(Bytes& into, double value, std::uint32_t divisor) {
  put(into, static_cast<std::uint32_t>(std::llround(std::abs(value) * divisor)));
  put(into, divisor);
}

// Whole degrees and minutes, and seconds to a ten-thousandth.
Entry angleEntry(std::uint16_t tag, double degrees) {
  constexpr std::int64_t kParts = 10'000, kInMinute = 60 * kParts, kInDegree = 60 * kInMinute;
  const std::int64_t parts = std::llround(std::abs(degrees) * kInDegree);
  const std::int64_t whole = parts / kInDegree, minutes = parts % kInDegree / kInMinute;
  Bytes value;
  putRational(value, static_cast<double>(whole), 1);
  putRational(value, static_cast<double>(minutes), 1);
  putRational(value, static_cast<double>(parts % kInMinute) / kParts, kParts);
  return {tag, kRational, 3, value};
}

std::uint32_t entryBytes(const Directory& directory) {
  std::size_t count = 2 + 12 * directory.size() + 4;
  for (const Entry& entry : directory) count += entry.value.size() > kInline ? entry.value.size() : 0;
  return static_cast<std::uint32_t>(count);
}

// A directory at that offset: its entries, the end of the list, and the values that do not fit into their entry.
Bytes bytesOf(const Directory& directory, std::uint32_t at) {
  Bytes bytes, values;
  put(bytes, static_cast<std::uint16_t>(directory.size()));
  const auto valuesAt = static_cast<std::uint32_t>(at + 2 + 12 * directory.size() + 4);
  for (const Entry& entry : directory) {
    add(bytes, packed(entry.tag, entry.type, entry.count));
    if (entry.value.size() > kInline) {
      put(bytes, static_cast<std::uint32_t>(valuesAt + values.size()));
      add(values, entry.value);
    } else {
      Bytes value = entry.value;
      value.resize(kInline);
      add(bytes, value);
    }
  }
  put(bytes, std::uint32_t{0});
  add(bytes, values);
  return bytes;
}

Directory placeDirectory(const Position& position) {
  Bytes altitude;
  putRational(altitude, position.altitude, 1000);
  return {{0x0000, kByte, 4, {2, 3, 0, 0}},
          textEntry(0x0001, position.latitude < 0 ? "S" : "N"),
          angleEntry(0x0002, position.latitude),
          textEntry(0x0003, position.longitude < 0 ? "W" : "E"),
          angleEntry(0x0004, position.longitude),
          {0x0005, kByte, 1, {static_cast<std::uint8_t>(position.altitude < 0 ? 1 : 0)}},
          {0x0006, kRational, 1, altitude}};
}

// The first directory points to the others, which follow it.
Bytes tiff(const std::string& localTime, const std::optional<Position>& position) {
  const Directory details = {{0x9000, kUndefined, 4, {'0', '2', '3', '2'}}, textEntry(0x9003, localTime)};
  Directory first = {textEntry(0x0132, localTime), {0x8769, kLong, 1, Bytes(4)}};
  if (position) first.push_back({0x8825, kLong, 1, Bytes(4)});
  const std::uint32_t detailsAt = kHeader + entryBytes(first), placeAt = detailsAt + entryBytes(details);
  first[1].value = packed(detailsAt);
  if (position) first[2].value = packed(placeAt);
  Bytes bytes{'I', 'I', 42, 0};
  put(bytes, kHeader);
  add(bytes, bytesOf(first, kHeader));
  add(bytes, bytesOf(details, detailsAt));
  if (position) add(bytes, bytesOf(placeDirectory(*position), placeAt));
  return bytes;
}

}  // namespace

std::optional<Position> positionIn(std::span<const std::uint8_t> gpsRecord) {
  if (gpsRecord.size() < 24) return std::nullopt;
  const auto value = [&](std::size_t at) { return std::bit_cast<double>(numberAt<std::uint64_t>(gpsRecord, at)); };
  const Position position{value(0), value(8), value(16)};
  const bool isNothing = position.latitude == 0 && position.longitude == 0 && position.altitude == 0;
  const bool isPlace = std::abs(position.latitude) <= 90 && std::abs(position.longitude) <= 180 &&
                       std::abs(position.altitude) <= kHighest;
  return isPlace && !isNothing ? std::optional(position) : std::nullopt;
}

Bytes exifSegment(const std::string& localTime, const std::optional<Position>& position) {
  Bytes content = textField("Exif", 6);
  add(content, tiff(localTime, position));
  const std::size_t length = 2 + content.size();
  Bytes segment{0xFF, 0xE1, static_cast<std::uint8_t>(length >> 8), static_cast<std::uint8_t>(length)};
  add(segment, content);
  return segment;
}

Bytes withSegment(const Bytes& file, const Bytes& segment) {
  constexpr std::size_t kStart = 2;
  if (file.size() < kStart) return file;
  const std::span<const std::uint8_t> all = file;
  Bytes result = copyOf(all.first(kStart));
  add(result, segment);
  add(result, all.subspan(kStart));
  return result;
}

}  // namespace zel::simulator

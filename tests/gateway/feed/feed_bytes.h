#pragma once

#include <cstdint>
#include <memory>
#include <numeric>
#include <span>
#include <string>
#include <vector>

#include <ZELTarkaSDK/MediaPacket.h>

#include "gateway/feed/viewer.h"
#include "outputs/mp4_boxes.h"

namespace zel::gateway::test {

using Bytes = std::vector<std::uint8_t>;

// Headers and packets that are small enough to be read by eye. The sets are no real ones, but for their first bytes.
inline StreamHeaders smallHeaders() {
  return {ZELData(Bytes{0x67, 0x42, 0xC0, 0x1F, 0xAA}),
          ZELData(Bytes{0x68, 0xCE}),
          ZELData(Bytes{0x11, 0x88}),  // 48 kHz, one channel
          64,
          32,
          false,
          {true, 6, 6, 6}};
}

// A picture of one slice of so many bytes.
inline MediaPacket picture(std::int64_t time, bool key = false, std::size_t size = 4) {
  Bytes bytes(4 + size, 0x77);
  bytes[0] = bytes[1] = bytes[2] = 0;
  bytes[3] = 1;
  bytes[4] = key ? 0x65 : 0x41;
  return {Track::video, key, time, ZELData(std::move(bytes)), std::nullopt};
}

inline MediaPacket sound(std::int64_t time, std::size_t size = 3) {
  return {Track::audio, false, time, ZELData(Bytes(size, 0x22)), std::nullopt};
}

// All that a viewer has, read by so many bytes at a time.
inline Bytes readAll(Viewer& viewer, std::size_t piece = 4096) {
  Bytes all, some(piece);
  while (const std::size_t count = viewer.read(some)) {
    all.insert(all.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(count));
  }
  return all;
}

// A record of access units, as the page that describes them says.
struct Record {
  int kind = -1;
  int flags = 0;
  std::int64_t time = 0;
  Bytes payload;

  std::string text() const { return {payload.begin(), payload.end()}; }
  bool operator==(const Record&) const = default;
};

inline std::uint64_t littleEndian(std::span<const std::uint8_t> bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) value = value << 8 | bytes[i];
  return value;
}

// Errors: a record of kind -1 stands for bytes that are none.
inline std::vector<Record> recordsIn(const Bytes& bytes) {
  std::vector<Record> records;
  std::span<const std::uint8_t> rest(bytes);
  while (!rest.empty()) {
    const std::uint64_t length = rest.size() < 14 ? 0 : littleEndian(rest.first(4));
    if (length < 10 || length > rest.size() - 4) return records.push_back({}), records;
    const auto record = rest.subspan(4, length);
    records.push_back({record[0], record[1], static_cast<std::int64_t>(littleEndian(record.subspan(2, 8))),
                       Bytes(record.begin() + 10, record.end())});
    rest = rest.subspan(4 + length);
  }
  return records;
}

// The names of the boxes that stand one behind the other; empty where they do not fill the bytes.
inline std::vector<std::string> namesOfBoxes(const Bytes& bytes) {
  std::vector<std::string> names;
  for (const Mp4Box& box : boxesIn(bytes, 0, bytes.size()).value_or(std::vector<Mp4Box>())) {
    std::string name;
    for (int shift = 24; shift >= 0; shift -= 8) name += static_cast<char>(box.type >> shift & 0xFF);
    names.push_back(name);
  }
  return names;
}

// A fragment's own statements.
struct Fragment {
  std::uint64_t track = 0, sequence = 0, time = 0, duration = 0, flags = 0;
  Bytes sample;
};

// The fragments in a stream, by the rules that browsers hold: one run of one sample each, whose bytes are those of its
// mdat and nothing else. Errors: fewer than there are.
inline std::vector<Fragment> fragmentsIn(const Bytes& bytes) {
  std::vector<Fragment> fragments;
  const auto boxes = boxesIn(bytes, 0, bytes.size()).value_or(std::vector<Mp4Box>());
  for (std::size_t i = 0; i + 1 < boxes.size(); ++i) {
    const Mp4Box& moof = boxes[i];
    const Mp4Box& mdat = boxes[i + 1];
    if (moof.type != boxType("moof") || mdat.type != boxType("mdat")) continue;
    // moof 8; mfhd 16; traf 8; tfhd 16, its track behind 12; tfdt 20, version 1; trun 32
    const std::size_t at = moof.begin;
    const bool isLaidOut = moof.end - at == 100 && numberAt(bytes, at + 12, 4) == boxType("mfhd") &&
                           numberAt(bytes, at + 28, 4) == boxType("traf") &&
                           numberAt(bytes, at + 36, 4) == boxType("tfhd") &&
                           numberAt(bytes, at + 52, 4) == boxType("tfdt") && numberAt(bytes, at + 56, 4) == 1U << 24 &&
                           numberAt(bytes, at + 72, 4) == boxType("trun") && numberAt(bytes, at + 80, 4) == 1;
    const std::uint64_t offset = numberAt(bytes, at + 84, 4), size = numberAt(bytes, at + 92, 4);
    if (!isLaidOut || at + offset != mdat.content || size != mdat.end - mdat.content) continue;
    fragments.push_back({numberAt(bytes, at + 44, 4), numberAt(bytes, at + 20, 4), numberAt(bytes, at + 60, 8),
                         numberAt(bytes, at + 88, 4), numberAt(bytes, at + 96, 4),
                         Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(mdat.content),
                               bytes.begin() + static_cast<std::ptrdiff_t>(mdat.end))});
  }
  return fragments;
}

}  // namespace zel::gateway::test

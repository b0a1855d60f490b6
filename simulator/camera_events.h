#pragma once

#include <cstdint>
#include <string>

#include "simulator/wire.h"

// The camera's events, as whole frames.

namespace zel::simulator {

// A file of the card, as in replies and events.
struct FileEntry {
  std::uint32_t time = 0;  // seconds since 1970
  std::uint64_t size = 0;
  std::string name;
};

// | 0  | u32  | time        |
// | 4  | u64  | size        |
// | 12 | text | name, and 0 |
Bytes entryBody(const FileEntry& file);

Bytes updateDoneEvent(std::uint8_t result);
Bytes batteryEvent(std::uint8_t powerType, std::uint8_t level);
Bytes batteryLowEvent(std::uint8_t level);
Bytes shutDownEvent(const Bytes& body);  // a byte, or none
Bytes cardStateEvent(std::uint8_t state);
Bytes keyEvent(std::uint8_t key);
Bytes offsetEvent(std::uint8_t typeInfo, const Bytes& record);
Bytes shutterStateEvent(std::uint8_t state);
Bytes deleteProgressEvent(std::uint32_t first, std::uint32_t second, std::uint32_t third);
Bytes gyroEvent(const Bytes& record);

// A recording that ended, or continues in another file. body: that of an entry, or empty.
Bytes splitEvent(const Bytes& body);
Bytes cardRunoutEvent(const Bytes& body);
Bytes timeRunoutEvent(const Bytes& body);

}  // namespace zel::simulator

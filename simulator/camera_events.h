#pragma once

#include <cstdint>
#include <string>

#include "simulator/wire.h"

namespace zel::simulator {

// The codes of the camera's events, which are messages without a request.
enum EventCode : std::uint16_t {
  kUpdateDoneEvent = 0x6001,  // result
  kSplitEvent,                // the recording's entry, or nothing; so are the other two ends of a recording
  kBatteryEvent,              // power type, level
  kBatteryLowEvent,           // level
  kShutDownEvent,             // a byte, or none
  kCardStateEvent,            // state
  kKeyEvent = 0x6008,         // key
  kOffsetEvent,               // resolution code, offset record
  kCardRunoutEvent,
  kTimeRunoutEvent,
  kShutterStateEvent,    // state
  kDeleteProgressEvent,  // three numbers (u32)
  kGyroEvent,            // gyro record
};

// A file of the card, as in replies and events.
struct FileEntry {
  std::uint32_t time = 0;  // seconds since 1970
  std::uint64_t size = 0;
  std::string name;
};

// | 0  | u32  | time        |
// | 4  | u64  | size        |
// | 12 | text | name, and 0 |
inline Bytes entryBody(const FileEntry& file) {
  Bytes body = packed(file.time, file.size);
  add(body, textField(file.name, file.name.size() + 1));
  return body;
}

}  // namespace zel::simulator

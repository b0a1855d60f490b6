#include "simulator/camera_events.h"

namespace zel::simulator {

Bytes entryBody(const FileEntry& file) {
  Bytes body;
  put(body, file.time);
  put(body, file.size);
  add(body, textField(file.name, file.name.size() + 1));
  return body;
}

Bytes updateDoneEvent(std::uint8_t result) { return message(0x6001, {result}); }
Bytes splitEvent(const Bytes& body) { return message(0x6002, body); }
Bytes batteryEvent(std::uint8_t powerType, std::uint8_t level) { return message(0x6003, {powerType, level}); }
Bytes batteryLowEvent(std::uint8_t level) { return message(0x6004, {level}); }
Bytes shutDownEvent(const Bytes& body) { return message(0x6005, body); }
Bytes cardStateEvent(std::uint8_t state) { return message(0x6006, {state}); }
Bytes keyEvent(std::uint8_t key) { return message(0x6008, {key}); }

Bytes offsetEvent(std::uint8_t typeInfo, const Bytes& record) {
  Bytes body{typeInfo};
  add(body, record);
  return message(0x6009, body);
}

Bytes cardRunoutEvent(const Bytes& body) { return message(0x600A, body); }
Bytes timeRunoutEvent(const Bytes& body) { return message(0x600B, body); }
Bytes shutterStateEvent(std::uint8_t state) { return message(0x600C, {state}); }

Bytes deleteProgressEvent(std::uint32_t first, std::uint32_t second, std::uint32_t third) {
  Bytes body;
  for (const std::uint32_t value : {first, second, third}) put(body, value);
  return message(0x600D, body);
}

Bytes gyroEvent(const Bytes& record) { return message(0x600E, record); }

}  // namespace zel::simulator

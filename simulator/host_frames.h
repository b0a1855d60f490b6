#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "simulator/wire.h"

namespace zel::simulator {

// One request of the host.
struct HostMessage {
  std::uint16_t code = 0;
  Bytes body;
};

// Cuts what the host sends into messages, whatever the chunks. Frames of other data types are skipped.
class HostFrames {
 public:
  void append(std::span<const std::uint8_t> bytes);

  // The next whole message; nullopt when more bytes are needed, or after a fault.
  std::optional<HostMessage> next();

  // What is wrong with the stream; empty while it is well.
  const std::string& fault() const { return fault_; }

 private:
  Bytes held_;
  std::string fault_;
};

}  // namespace zel::simulator

#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <variant>

#include "simulator/wire.h"

namespace zel::simulator {

inline constexpr std::size_t kLargestFile = 256u * 1024 * 1024;  // from a host

// One request of the host.
struct HostMessage {
  std::uint16_t code = 0;
  Bytes body;
};

// A file that the host sends: file type, reserved, 64 bytes of path, the file's bytes. Not checked yet.
struct HostFile {
  Bytes payload;
};

using HostFrame = std::variant<HostMessage, HostFile>;

// Cuts the host's bytes into frames, independent of the chunks. Frames of other data types are skipped.
class HostFrames {
 public:
  // Every byte is copied at most twice, for any frame size. Memory is not reserved from a frame's claimed length.
  void append(std::span<const std::uint8_t> bytes);

  // The next whole frame; nullopt when more bytes are needed, or after a fault.
  std::optional<HostFrame> next();

  // The fault of the stream; empty without one. Nothing is read after a fault.
  const std::string& fault() const { return fault_; }

 private:
  std::size_t takeHeader(std::span<const std::uint8_t> bytes);
  std::size_t takePayload(std::span<const std::uint8_t> bytes);
  void beginPayload();
  void endFrame();

  Bytes header_;
  Bytes payload_;
  std::size_t left_ = 0;  // of the payload
  std::deque<HostFrame> ready_;
  std::string fault_;
};

}  // namespace zel::simulator

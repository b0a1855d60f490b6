#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <variant>

#include "platform/linux/unique_descriptor.h"

namespace zel::platform {

// A stream socket's path.
struct UnixEndpoint {
  std::string path;
  bool operator==(const UnixEndpoint&) const = default;
};

struct TcpEndpoint {
  std::string host;
  std::uint16_t port = 0;
  bool operator==(const TcpEndpoint&) const = default;
};

// A character device: a phone's USB accessory node, or a tty, which is put into raw mode.
struct DeviceEndpoint {
  std::string path;
  bool operator==(const DeviceEndpoint&) const = default;
};

// The address of an accessory's byte stream.
using Endpoint = std::variant<UnixEndpoint, TcpEndpoint, DeviceEndpoint>;

// The longest path that a socket's address holds.
inline constexpr std::size_t kLongestSocketPath = 107;

// Connects, waiting at most `limit` for the other end. (Looking up a host's name may take the resolver longer.)
// Errors: an empty descriptor; `fault` says what was tried and why it failed.
UniqueDescriptor connectEndpoint(const Endpoint& endpoint, std::chrono::milliseconds limit, std::string& fault);

}  // namespace zel::platform

#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace zel::platform {

struct UnixEndpoint {
  std::string path;
  bool operator==(const UnixEndpoint&) const = default;
};
struct TcpEndpoint {
  std::string host;
  std::uint16_t port = 0;
  bool operator==(const TcpEndpoint&) const = default;
};
struct DeviceEndpoint {
  std::string path;
  bool operator==(const DeviceEndpoint&) const = default;
};

// Where an accessory's byte stream is found.
using Endpoint = std::variant<UnixEndpoint, TcpEndpoint, DeviceEndpoint>;

// Connects, waiting at most two seconds. Returns a non-blocking descriptor that the caller owns, -1 when it fails.
int connectEndpoint(const Endpoint& endpoint);

}  // namespace zel::platform

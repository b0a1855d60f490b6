#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/unique_descriptor.h"

namespace zel::gateway {

// Where a server listens.
struct ListenAddress {
  std::string host;  // a name or an address, without brackets
  std::uint16_t port = 0;

  bool operator==(const ListenAddress&) const = default;
};

// "127.0.0.1:8360", "[::1]:8360", "camera.local:0".
// Errors: nothing for anything else.
std::optional<ListenAddress> parseListenAddress(std::string_view text);

// A socket that listens.
struct Listener {
  platform::UniqueDescriptor socket;
  std::string
      host;  // by which a browser reaches it: an address, in brackets where it is of IPv6, or this machine's name
  std::uint16_t port = 0;
  bool isLoopback = false;  // nobody on another machine reaches it
};

// Port 0 takes a free one.
// Errors: nothing; `error` says what is wrong with the address.
std::optional<Listener> listenAt(const ListenAddress& address, std::string& error);

// What systemd listens at for this process; taken once.
struct InheritedSockets {
  std::optional<Listener> listener;          // of TCP
  platform::UniqueDescriptor localListener;  // of a Unix socket
};
InheritedSockets takeInheritedSockets();

// Names by which others may know this machine: its own, and the one of its network without a name server.
std::vector<std::string> namesOfThisMachine();

}  // namespace zel::gateway

#pragma once

#include <array>
#include <memory>
#include <string>

#include "platform/linux/unique_descriptor.h"

namespace zel::platform {

// Where the gateways of a bus are looked for, in this order: .gateway.sock inside the bus's folder, gateway.sock beside
// it. For the folder /run/zel/bus the second one is /run/zel/gateway.sock.
std::array<std::string, 2> gatewaySocketPaths(const std::string& busFolder);

// The socket at which a gateway takes connections of this machine. Only its own user can connect (mode 0600). The
// socket stands beside the bus's folder; where that is impossible, or another gateway answers there, inside it. What a
// killed gateway left is replaced.
class GatewaySocket {
 public:
  // Errors: null; `fault` says which socket could not be made and why, or that gateways answer at both.
  static std::unique_ptr<GatewaySocket> listen(const std::string& busFolder, std::string& fault);

  // Removes the socket, unless somebody has replaced it.
  ~GatewaySocket();
  GatewaySocket(const GatewaySocket&) = delete;
  GatewaySocket& operator=(const GatewaySocket&) = delete;

  const std::string& path() const { return path_; }
  // Non-blocking.
  int descriptor() const { return descriptor_.get(); }

 private:
  GatewaySocket(std::string path, UniqueDescriptor descriptor);

  const std::string path_;
  const UniqueDescriptor descriptor_;
  unsigned long device_ = 0, file_ = 0;  // what stands at the path while it is this one
};

}  // namespace zel::platform

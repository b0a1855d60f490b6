#include "platform/linux/endpoint.h"

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

namespace zel::platform {
namespace {

constexpr int kConnectMilliseconds = 2000;

int closed(int descriptor) {
  ::close(descriptor);
  return -1;
}

// The socket once it is connected, else -1, the socket being closed.
int connected(int descriptor, const sockaddr* address, socklen_t length) {
  if (descriptor < 0) return -1;
  if (::connect(descriptor, address, length) == 0) return descriptor;
  if (errno != EINPROGRESS) return closed(descriptor);
  pollfd watched{descriptor, POLLOUT, 0};
  int fault = 0;
  socklen_t size = sizeof(fault);
  const bool ready = ::poll(&watched, 1, kConnectMilliseconds) == 1;
  if (!ready || ::getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &fault, &size) != 0 || fault != 0) {
    return closed(descriptor);
  }
  return descriptor;
}

int connectTo(const UnixEndpoint& endpoint) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (endpoint.path.size() >= sizeof(address.sun_path)) return -1;
  std::memcpy(address.sun_path, endpoint.path.data(), endpoint.path.size());
  const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  return connected(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
}

int connectTo(const TcpEndpoint& endpoint) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (::getaddrinfo(endpoint.host.c_str(), std::to_string(endpoint.port).c_str(), &hints, &found) != 0) return -1;
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> addresses(found, &::freeaddrinfo);
  for (const addrinfo* one = found; one != nullptr; one = one->ai_next) {
    const int descriptor = ::socket(one->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (connected(descriptor, one->ai_addr, one->ai_addrlen) < 0) continue;
    const int on = 1;  // requests are small and must not wait for each other
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    return descriptor;
  }
  return -1;
}

int connectTo(const DeviceEndpoint& endpoint) {
  const int descriptor = ::open(endpoint.path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) return -1;
  termios settings{};
  if (::tcgetattr(descriptor, &settings) != 0) return descriptor;  // no terminal: nothing rewrites the bytes
  ::cfmakeraw(&settings);
  return ::tcsetattr(descriptor, TCSANOW, &settings) == 0 ? descriptor : closed(descriptor);
}

}  // namespace

int connectEndpoint(const Endpoint& endpoint) {
  return std::visit([](const auto& one) { return connectTo(one); }, endpoint);
}

}  // namespace zel::platform

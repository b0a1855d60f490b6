#include "platform/linux/endpoint.h"

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <termios.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "platform/linux/error_text.h"

namespace zel::platform {
namespace {

using Deadline = std::chrono::steady_clock::time_point;

std::chrono::milliseconds timeLeft(Deadline deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
  return std::max(left, std::chrono::milliseconds(0));
}

// With a full connection queue a Unix socket blocks inside connect(), where only SO_SNDTIMEO limits it.
int connectUnix(int descriptor, const UnixEndpoint& endpoint, Deadline deadline) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, endpoint.path.data(), endpoint.path.size());
  int result = -1;
  do {
    const auto left = std::max(timeLeft(deadline), std::chrono::milliseconds(1));  // zero would mean forever
    const timeval limit = {.tv_sec = left.count() / 1000, .tv_usec = left.count() % 1000 * 1000};
    setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    result = connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  } while (result != 0 && errno == EINTR);
  return result == 0 ? 0 : errno;
}

UniqueDescriptor open(const UnixEndpoint& endpoint, Deadline deadline, std::string& fault) {
  int code = ENAMETOOLONG;
  if (endpoint.path.size() <= kLongestSocketPath) {
    UniqueDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    code = socket ? connectUnix(socket.get(), endpoint, deadline) : errno;
    if (code == 0) return socket;
    if (code == EAGAIN) code = ETIMEDOUT;
  }
  fault = "unix socket " + endpoint.path + ": " + errorText(code);
  return {};
}

int awaitConnection(int descriptor, Deadline deadline) {
  pollfd query = {.fd = descriptor, .events = POLLOUT, .revents = 0};
  int ready = -1;
  do {
    ready = poll(&query, 1, static_cast<int>(timeLeft(deadline).count()));
  } while (ready < 0 && errno == EINTR);
  if (ready < 0) return errno;
  if (ready == 0) return ETIMEDOUT;
  int code = 0;
  socklen_t size = sizeof code;
  return getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &code, &size) == 0 ? code : errno;
}

UniqueDescriptor connectAddress(const addrinfo& address, Deadline deadline, int& code) {
  UniqueDescriptor socket(::socket(address.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  code = socket ? 0 : errno;
  if (!socket) return {};
  if (connect(socket.get(), address.ai_addr, address.ai_addrlen) != 0) {
    const bool begun = errno == EINPROGRESS || errno == EINTR;
    code = begun ? awaitConnection(socket.get(), deadline) : errno;
  }
  if (code != 0) return {};
  // Requests are small and wait for their replies; delaying them for more bytes (Nagle) only adds latency.
  const int on = 1;
  setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return socket;
}

UniqueDescriptor open(const TcpEndpoint& endpoint, Deadline deadline, std::string& fault) {
  fault = "tcp " + endpoint.host + " port " + std::to_string(endpoint.port) + ": ";
  addrinfo hints = {};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int lookup = getaddrinfo(endpoint.host.c_str(), std::to_string(endpoint.port).c_str(), &hints, &found);
  if (lookup != 0) {
    fault += gai_strerror(lookup);
    return {};
  }
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> addresses(found, &freeaddrinfo);
  int code = ETIMEDOUT;
  for (const addrinfo* address = found; address != nullptr; address = address->ai_next) {
    UniqueDescriptor socket = connectAddress(*address, deadline, code);
    if (socket) return socket;
  }
  fault += errorText(code);
  return {};
}

bool makeRaw(int descriptor) {
  termios settings = {};
  if (tcgetattr(descriptor, &settings) != 0) return false;
  cfmakeraw(&settings);
  return tcsetattr(descriptor, TCSANOW, &settings) == 0;
}

UniqueDescriptor open(const DeviceEndpoint& endpoint, Deadline, std::string& fault) {
  fault = "device " + endpoint.path + ": ";
  UniqueDescriptor device(::open(endpoint.path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat kind = {};
  if (!device || fstat(device.get(), &kind) != 0) {
    fault += errorText(errno);
    return {};
  }
  if (!S_ISCHR(kind.st_mode)) {
    fault += "not a character device";
    return {};
  }
  if (isatty(device.get()) != 0 && !makeRaw(device.get())) {
    fault += "cannot be put into raw mode: " + errorText(errno);
    return {};
  }
  return device;
}

}  // namespace

UniqueDescriptor connectEndpoint(const Endpoint& endpoint, std::chrono::milliseconds limit, std::string& fault) {
  const Deadline deadline = std::chrono::steady_clock::now() + limit;
  return std::visit([&](const auto& kind) { return open(kind, deadline, fault); }, endpoint);
}

}  // namespace zel::platform

#include "gateway/http/listen.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "gateway/json/number_text.h"

namespace zel::gateway {
namespace {

using platform::UniqueDescriptor;

constexpr int kFirstInherited = 3;  // as systemd numbers them
constexpr int kBacklog = 512;

std::string hostNameOfThisMachine() {
  char name[HOST_NAME_MAX + 1] = {};
  if (::gethostname(name, HOST_NAME_MAX) != 0 || name[0] == '\0') return "localhost";
  std::string text = name;
  std::ranges::transform(text, text.begin(), [](unsigned char letter) { return std::tolower(letter); });
  return text;
}

struct Ends {
  std::string host;
  std::uint16_t port = 0;
  bool isLoopback = false;
};

// What a listening socket is bound to; nothing where it is no TCP socket.
std::optional<Ends> endsOf(int socket) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) return std::nullopt;
  char text[INET6_ADDRSTRLEN] = {};
  if (address.ss_family == AF_INET) {
    const auto& four = reinterpret_cast<const sockaddr_in&>(address);
    const bool isAny = four.sin_addr.s_addr == INADDR_ANY;
    ::inet_ntop(AF_INET, &four.sin_addr, text, sizeof text);
    return Ends{isAny ? hostNameOfThisMachine() : text, ntohs(four.sin_port),
                std::string_view(text).starts_with("127.")};
  }
  if (address.ss_family == AF_INET6) {
    const auto& six = reinterpret_cast<const sockaddr_in6&>(address);
    const bool isAny = IN6_IS_ADDR_UNSPECIFIED(&six.sin6_addr);
    ::inet_ntop(AF_INET6, &six.sin6_addr, text, sizeof text);
    return Ends{isAny ? hostNameOfThisMachine() : fmt::format("[{}]", text), ntohs(six.sin6_port),
                IN6_IS_ADDR_LOOPBACK(&six.sin6_addr) != 0};
  }
  return std::nullopt;
}

std::optional<Listener> listenerOf(UniqueDescriptor socket) {
  const auto ends = endsOf(socket.get());
  if (!ends) return std::nullopt;
  return Listener{std::move(socket), ends->host, ends->port, ends->isLoopback};
}

UniqueDescriptor bound(const addrinfo& at) {
  UniqueDescriptor socket(::socket(at.ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!socket) return {};
  const int on = 1;
  ::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (::bind(socket.get(), at.ai_addr, at.ai_addrlen) != 0 || ::listen(socket.get(), kBacklog) != 0) return {};
  return socket;
}

std::string whyNot(const ListenAddress& address, int fault) {
  const std::string where = fmt::format("{}:{}", address.host, address.port);
  if (fault == EADDRINUSE) return fmt::format("{} is taken by another program; --listen takes another port", where);
  if (fault == EACCES) return fmt::format("only root may listen at {}; --listen takes a port from 1024 on", where);
  if (fault == EADDRNOTAVAIL) return fmt::format("{} is no address of this machine", address.host);
  return fmt::format("cannot listen at {}: {}", where, std::strerror(fault));
}

}  // namespace

std::optional<ListenAddress> parseListenAddress(std::string_view text) {
  const std::size_t colon = text.rfind(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const auto port = numberIn<std::uint16_t>(text.substr(colon + 1));
  std::string_view host = text.substr(0, colon);
  const bool isBracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
  if (isBracketed) host = host.substr(1, host.size() - 2);
  const bool isBroken = host.find_first_of("[]") != std::string_view::npos;
  if (!port || host.empty() || isBroken || (!isBracketed && host.find(':') != std::string_view::npos)) {
    return std::nullopt;
  }
  return ListenAddress{std::string(host), *port};
}

std::optional<Listener> listenAt(const ListenAddress& address, std::string& error) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
  addrinfo* found = nullptr;
  const int fault = ::getaddrinfo(address.host.c_str(), std::to_string(address.port).c_str(), &hints, &found);
  if (fault != 0) {
    error = fmt::format("{} is no address of this machine: {}", address.host, ::gai_strerror(fault));
    return std::nullopt;
  }
  const std::unique_ptr<addrinfo, void (*)(addrinfo*)> all(found, ::freeaddrinfo);
  errno = 0;
  UniqueDescriptor socket = bound(*all);
  if (!socket) {
    error = whyNot(address, errno);
    return std::nullopt;
  }
  return listenerOf(std::move(socket));
}

InheritedSockets takeInheritedSockets() {
  InheritedSockets sockets;
  const char* const process = std::getenv("LISTEN_PID");
  const char* const count = std::getenv("LISTEN_FDS");
  if (process == nullptr || count == nullptr || numberIn<pid_t>(process) != ::getpid()) return sockets;
  const int end = kFirstInherited + std::min(numberIn<int>(count).value_or(0), 16);
  ::unsetenv("LISTEN_PID");  // not for the programs that this one may start
  ::unsetenv("LISTEN_FDS");
  for (int one = kFirstInherited; one < end; ++one) {
    UniqueDescriptor socket(one);
    ::fcntl(one, F_SETFD, FD_CLOEXEC);
    ::fcntl(one, F_SETFL, O_NONBLOCK);
    if (endsOf(one)) {
      if (!sockets.listener) sockets.listener = listenerOf(std::move(socket));
    } else if (!sockets.localListener) {
      sockets.localListener = std::move(socket);
    }
  }
  return sockets;
}

std::vector<std::string> namesOfThisMachine() {
  const std::string name = hostNameOfThisMachine();
  return {name, name + ".local"};
}

}  // namespace zel::gateway

#include "platform/linux/gateway_way.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/endpoint.h"
#include "platform/linux/gateway_socket.h"
#include "platform/linux/percent_encoding.h"

namespace zel::platform {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr std::size_t kLongestHeader = 8192;
constexpr std::string_view kHeaderEnd = "\r\n\r\n";

bool isTrusted(uid_t user) { return user == ::geteuid() || user == 0; }

bool isFileTrusted(const std::string& path) {
  struct stat found = {};
  return ::lstat(path.c_str(), &found) == 0 && S_ISSOCK(found.st_mode) && isTrusted(found.st_uid);
}

// Whoever may write the folder can put a socket of any file owner there; its listener's user is the kernel's word.
bool isPeerTrusted(int socket) {
  ucred peer = {};
  socklen_t size = sizeof peer;
  return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && isTrusted(peer.uid);
}

bool isReady(int socket, short event, SteadyClock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - SteadyClock::now());
    if (left.count() <= 0) return false;
    pollfd query = {.fd = socket, .events = event, .revents = 0};
    const int ready = ::poll(&query, 1, static_cast<int>(left.count()));
    if (ready > 0) return true;
    if (ready == 0 || errno != EINTR) return false;
  }
}

bool isPassing(ssize_t result) { return result < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR); }

bool sendAll(int socket, std::string_view text, SteadyClock::time_point deadline) {
  while (!text.empty()) {
    if (!isReady(socket, POLLOUT, deadline)) return false;
    const ssize_t sent = ::send(socket, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent < 0 && !isPassing(sent)) return false;
    if (sent > 0) text.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

// Looks before it takes: the bytes behind the header are the camera's already.
std::optional<std::string> readHeader(int socket, SteadyClock::time_point deadline) {
  std::string header;
  std::array<char, 1024> buffer{};
  while (header.size() < kLongestHeader) {
    if (!isReady(socket, POLLIN, deadline)) return std::nullopt;
    const ssize_t seen = ::recv(socket, buffer.data(), buffer.size(), MSG_PEEK | MSG_DONTWAIT);
    if (isPassing(seen)) continue;
    if (seen <= 0) return std::nullopt;
    const std::size_t before = header.size();
    header.append(buffer.data(), static_cast<std::size_t>(seen));
    const std::size_t end = header.find(kHeaderEnd, before < kHeaderEnd.size() ? 0 : before - kHeaderEnd.size());
    if (end != std::string::npos) header.resize(end + kHeaderEnd.size());
    const ssize_t taken = ::recv(socket, buffer.data(), header.size() - before, MSG_DONTWAIT);
    if (taken < 0 || static_cast<std::size_t>(taken) != header.size() - before) return std::nullopt;
    if (end != std::string::npos) return header;
  }
  return std::nullopt;
}

int statusIn(std::string_view header) {
  constexpr std::string_view kVersion = "HTTP/1.1 ";
  int status = 0;
  if (!header.starts_with(kVersion)) return status;
  header.remove_prefix(kVersion.size());
  std::from_chars(header.data(), header.data() + header.size(), status);
  return status;
}

GatewayWay ask(const std::string& path, const std::string& camera, SteadyClock::time_point deadline) {
  using Answer = GatewayWay::Answer;
  std::string ignored;
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - SteadyClock::now());
  if (left.count() <= 0 || !isFileTrusted(path)) return {};
  UniqueDescriptor socket = connectEndpoint(UnixEndpoint{path}, left, ignored);
  if (!socket || !isPeerTrusted(socket.get())) return {};
  const std::string request = "GET /api/v1/cameras/" + percentEncoded(camera) +
                              "/wire HTTP/1.1\r\nHost: localhost\r\nConnection: Upgrade\r\nUpgrade: zel-wire\r\n\r\n";
  if (!sendAll(socket.get(), request, deadline)) return {};
  const auto header = readHeader(socket.get(), deadline);
  switch (header ? statusIn(*header) : 0) {
    case 101:
      return {Answer::granted, std::move(socket)};
    case 503:
      return {Answer::absent, {}};
    default:
      return {};
  }
}

}  // namespace

GatewayWay askGateways(const std::string& busFolder, const std::string& camera, std::chrono::milliseconds limit) {
  const SteadyClock::time_point deadline = SteadyClock::now() + limit;
  GatewayWay best;
  for (const std::string& path : gatewaySocketPaths(busFolder)) {
    GatewayWay way = ask(path, camera, deadline);
    if (way.answer == GatewayWay::Answer::granted) return way;
    if (way.answer == GatewayWay::Answer::absent) best = std::move(way);
  }
  return best;
}

}  // namespace zel::platform

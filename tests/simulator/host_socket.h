#pragma once

#include <gmock/gmock.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string>

#include "simulator/wire.h"

namespace zel::simulator {

// A host's end of the wire that knows bytes and frames, and nothing of the framework.
class HostSocket {
 public:
  struct Frame {
    std::uint16_t type = 0;
    Bytes payload;

    bool operator==(const Frame&) const = default;
  };

  explicit HostSocket(const std::string& path) : socket_(::socket(AF_UNIX, SOCK_STREAM, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    EXPECT_EQ(::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0) << path;
  }
  ~HostSocket() { ::close(socket_); }
  HostSocket(const HostSocket&) = delete;
  HostSocket& operator=(const HostSocket&) = delete;

  void send(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
      const ssize_t sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      ASSERT_GT(sent, 0);
      bytes = bytes.subspan(static_cast<std::size_t>(sent));
    }
  }

  // Waits for bytes. False when the camera has closed, or after half a minute of silence.
  bool receive() {
    pollfd waiting{socket_, POLLIN, 0};
    if (::poll(&waiting, 1, 30'000) != 1) return false;
    std::array<std::uint8_t, 65536> bytes;
    const ssize_t size = ::recv(socket_, bytes.data(), bytes.size(), 0);
    if (size > 0) received.insert(received.end(), bytes.begin(), bytes.begin() + size);
    closed_ = size <= 0;
    return !closed_;
  }

  // Receives until the camera closes; false after half a minute of silence.
  bool waitForClose() {
    while (receive()) continue;
    return closed_;
  }

  bool receiveAtLeast(std::size_t size) {
    while (received.size() < size) {
      if (!receive()) return false;
    }
    return true;
  }

  // Receives until the bytes are among the received; where they begin.
  std::optional<std::size_t> waitFor(const Bytes& bytes) {
    for (;;) {
      const auto found = std::search(received.begin(), received.end(), bytes.begin(), bytes.end());
      if (found != received.end()) return static_cast<std::size_t>(found - received.begin());
      if (!receive()) return std::nullopt;
    }
  }

  // The next whole frame of any type; it is taken from the received.
  std::optional<Frame> anyFrame() {
    if (!receiveAtLeast(6)) return std::nullopt;
    const std::size_t length = numberAt<std::uint32_t>(received, 0);
    if (length < 6 || !receiveAtLeast(length)) return std::nullopt;
    const std::span<const std::uint8_t> all = received;
    Frame frame{numberAt<std::uint16_t>(received, 4), copyOf(all.subspan(6, length - 6))};
    drop(length);
    return frame;
  }

  // The next frame that is no media. An impossible one after the camera has closed.
  Frame frame() {
    while (auto next = anyFrame()) {
      if (next->type != 1 && next->type != 2 && next->type != 8) return *next;
    }
    return {};
  }

  void drop(std::size_t size) {
    received.erase(received.begin(), received.begin() + static_cast<std::ptrdiff_t>(size));
  }

  Bytes received;

 private:
  int socket_;
  bool closed_ = false;
};

}  // namespace zel::simulator

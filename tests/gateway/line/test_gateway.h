#pragma once

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "gateway/line/shared_lines.h"
#include "platform/linux/gateway_socket.h"
#include "platform/linux/unique_descriptor.h"

namespace zel::test {

// A gateway without anything but its lines: answers the upgrade on its socket, and admits the connection.
class TestGateway {
 public:
  explicit TestGateway(const std::string& bus, const std::string& camera = {},
                       gateway::SharedLines::Observer* observer = nullptr) {
    std::string error;
    socket_ = platform::GatewaySocket::listen(bus, error);
    lines_ = gateway::SharedLines::create(
        {.accessoriesFolder = bus, .program = "zelcam serve", .camera = camera, .warn = [](const std::string&) {}},
        observer, error);
    if (lines_ && socket_) thread_ = std::thread([this] { run(); });
  }
  ~TestGateway() {
    const std::uint64_t one = 1;
    if (::write(end_.get(), &one, sizeof one) == sizeof one && thread_.joinable()) thread_.join();
  }
  TestGateway(const TestGateway&) = delete;
  TestGateway& operator=(const TestGateway&) = delete;

  bool isThere() const { return thread_.joinable(); }
  gateway::SharedLines& lines() { return *lines_; }
  const std::string& path() const { return socket_->path(); }

 private:
  void run() {
    for (;;) {
      pollfd queries[] = {{end_.get(), POLLIN, 0}, {socket_->descriptor(), POLLIN, 0}};
      if (::poll(queries, 2, -1) < 0) continue;
      if (queries[0].revents != 0) return;
      platform::UniqueDescriptor host(::accept4(socket_->descriptor(), nullptr, nullptr, SOCK_CLOEXEC));
      if (host) serve(std::move(host));
    }
  }

  // Byte by byte, so that none behind the header is read.
  void serve(platform::UniqueDescriptor host) {
    std::string header;
    for (char letter = 0; header.size() < 4096 && !header.ends_with("\r\n\r\n");) {
      if (::recv(host.get(), &letter, 1, 0) != 1) return;
      header += letter;
    }
    constexpr std::string_view kBegin = "GET /api/v1/cameras/", kEnd = "/wire HTTP/1.1\r\n";
    const std::size_t end = header.find(kEnd);
    if (!header.starts_with(kBegin) || end == std::string::npos) return answer(host, "404 Not Found");
    const std::string camera = header.substr(kBegin.size(), end - kBegin.size());
    for (const auto& known : lines_->cameras()) {
      if (known.camera != camera) continue;
      if (!known.isPresent()) return answer(host, "503 Service Unavailable");
      answer(host, "101 Switching Protocols");
      lines_->admit(camera, std::move(host));
      return;
    }
    answer(host, "404 Not Found");
  }

  static void answer(const platform::UniqueDescriptor& host, const std::string& status) {
    const std::string text = "HTTP/1.1 " + status + "\r\nConnection: Upgrade\r\nUpgrade: zel-wire\r\n\r\n";
    [[maybe_unused]] const auto sent = ::send(host.get(), text.data(), text.size(), MSG_NOSIGNAL);
  }

  const platform::UniqueDescriptor end_{::eventfd(0, EFD_CLOEXEC)};
  std::unique_ptr<gateway::SharedLines> lines_;
  std::unique_ptr<platform::GatewaySocket> socket_;
  std::thread thread_;
};

}  // namespace zel::test

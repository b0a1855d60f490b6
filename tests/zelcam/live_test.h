#pragma once

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "tests/outputs/read_back.h"
#include "tests/zelcam/zelcam_test.h"

namespace zel::test {

// `zelcam live` as a process, which writes into the test's folder.
class LiveTest : public ZelcamTest {
 protected:
  LiveTest() { av_log_set_level(AV_LOG_QUIET); }

  std::string path(const std::string& name) const { return folder.path() + "/" + name; }

  std::unique_ptr<Process> live(Arguments arguments) const {
    arguments.insert(arguments.begin(), {"--timeout", "30", "--verbose", "live"});
    return zelcam(std::move(arguments));
  }

  // Waits until the file has that many bytes.
  static bool grows(const std::string& file, std::uintmax_t size) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    std::error_code fault;
    while (std::chrono::steady_clock::now() < end) {
      const std::uintmax_t now = std::filesystem::file_size(file, fault);
      if (!fault && now >= size) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return false;
  }

  // A port of this machine that nobody uses. type: SOCK_STREAM or SOCK_DGRAM.
  static int freePort(int type) {
    const int socket = ::socket(AF_INET, type, 0);
    sockaddr_in any{};
    any.sin_family = AF_INET;
    any.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof any;
    ::bind(socket, reinterpret_cast<sockaddr*>(&any), size);
    ::getsockname(socket, reinterpret_cast<sockaddr*>(&any), &size);
    ::close(socket);
    return ntohs(any.sin_port);
  }
};

}  // namespace zel::test

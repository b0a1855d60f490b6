#include "tests/zelcam/greedy_camera.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace zel::test {
namespace {

constexpr std::uint16_t kMarkerRequest = 0x402E, kReply = 0x8000;
constexpr std::uint8_t kMarker[] = {0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA};

void append(GreedyCamera::Bytes& bytes, std::uint64_t number, int size) {
  for (int at = 0; at < size; ++at) bytes.push_back(static_cast<std::uint8_t>(number >> 8 * at));
}

}  // namespace

GreedyCamera::GreedyCamera(const std::string& busFolder, std::map<std::uint16_t, Sending> onRequest)
    : socket_(busFolder + "/greedy.sock"), file_(busFolder + "/greedy.json"), onRequest_(std::move(onRequest)) {
  std::filesystem::create_directories(busFolder);
  std::filesystem::permissions(busFolder, std::filesystem::perms::owner_all);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, socket_.c_str(), sizeof address.sun_path - 1);
  listener_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (::bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) std::abort();
  if (::listen(listener_, 8) != 0) std::abort();
  std::ofstream(file_ + ".part")
      << R"({"connectionID":7,"manufacturer":"Example","name":"Greedy",)"
      << R"("modelNumber":"E1","serialNumber":"G1","hardwareRevision":"1.0","dockType":"usb",)"
      << R"("firmwareRevision":"E1_2.0.1_192","protocolStrings":["com.zelcam.ucd"],)"
      << R"("endpoint":{"type":"unix","path":")" << socket_ << "\"}}";
  std::filesystem::rename(file_ + ".part", file_);
  thread_ = std::thread([this] { run(); });
}

GreedyCamera::~GreedyCamera() {
  ending_ = true;
  ::shutdown(listener_, SHUT_RDWR);
  if (const int host = host_; host >= 0) ::shutdown(host, SHUT_RDWR);
  thread_.join();
  ::close(listener_);
}

void GreedyCamera::run() {
  while (!ending_) {
    host_ = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (host_ < 0) return;
    serve();
    ::close(host_.exchange(-1));
  }
}

void GreedyCamera::serve() {
  std::array<std::uint8_t, 8> header;
  while (receive(header)) {
    const auto length = static_cast<std::size_t>(header[0] | header[1] << 8 | header[2] << 16);
    Bytes body(length > header.size() ? length - header.size() : 0);
    if (!receive(body)) return;
    handle(static_cast<std::uint16_t>(header[6] | header[7] << 8));
  }
}

void GreedyCamera::handle(std::uint16_t code) {
  if (code == kMarkerRequest) {
    // The host parses what follows the marker with its next read.
    if (!send(kMarker) || !sendFrame(2, {}, 1)) return;
    ::usleep(50'000);
  }
  if (const auto found = onRequest_.find(code); found != onRequest_.end()) return found->second(*this);
  // Agreed, and enough zeros for whatever values the reply has.
  sendMessage(static_cast<std::uint16_t>(code | kReply), {1}, 200);
}

bool GreedyCamera::sendFrame(std::uint16_t type, const Bytes& payload, std::size_t size) {
  Bytes begin;
  append(begin, 6 + size, 4);
  append(begin, type, 2);
  begin.insert(begin.end(), payload.begin(), payload.end());
  if (!send(begin)) return false;
  static const Bytes zeros(1 << 20);
  for (std::size_t left = size - payload.size(); left != 0;) {
    const std::size_t some = std::min(left, zeros.size());
    if (!send(std::span(zeros).first(some))) return false;
    left -= some;
  }
  return true;
}

bool GreedyCamera::sendMessage(std::uint16_t code, const Bytes& body, std::size_t size) {
  Bytes payload;
  append(payload, code, 2);
  payload.insert(payload.end(), body.begin(), body.end());
  return sendFrame(4, payload, 2 + size);
}

bool GreedyCamera::send(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::send(host_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

bool GreedyCamera::receive(std::span<std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::recv(host_, bytes.data(), bytes.size(), 0);
    if (count <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace zel::test

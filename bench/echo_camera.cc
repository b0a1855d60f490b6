#include "bench/echo_camera.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "base/wire.h"
#include "protocol/frame.h"

namespace zel::bench {
namespace {

constexpr std::uint16_t kMarkerRequest = 0x402E;

std::string makeFolder() {
  std::string pattern = "/tmp/zel-bench-XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) std::abort();
  return pattern;
}

sockaddr_un addressOf(const std::string& path) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.data(), path.size());
  return address;
}

bool sendAll(int descriptor, ByteView bytes) {
  return send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

// Makes replies of the whole frames in place. Returns their length; `marker` tells that the marker is asked for.
std::size_t answer(std::span<std::uint8_t> bytes, bool& marker) {
  std::size_t at = 0;
  while (bytes.size() - at >= kFrameHeader + 2) {
    const auto length = loadLittleEndian<std::uint32_t>(bytes.data() + at);
    if (length < kFrameHeader + 2 || bytes.size() - at < length) break;
    marker = marker || loadLittleEndian<std::uint16_t>(bytes.data() + at + kFrameHeader) == kMarkerRequest;
    bytes[at + kFrameHeader + 1] |= 0x80;
    at += length;
  }
  return at;
}

}  // namespace

EchoCamera::EchoCamera() : folder_(makeFolder()), listener_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const sockaddr_un address = addressOf(socketPath());
  if (bind(listener_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) std::abort();
  if (listen(listener_.get(), 4) != 0) std::abort();
  attach();
  thread_ = std::thread([this] { run(); });
}

EchoCamera::~EchoCamera() {
  shutdown(listener_.get(), SHUT_RDWR);
  thread_.join();
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void EchoCamera::attach() const {
  std::ofstream(folder_ + "/camera.json")
      << R"({"connectionID":1,"manufacturer":"Example","name":"Echo","modelNumber":"E1","serialNumber":"ECHO1",)"
      << R"("firmwareRevision":"E1_2.0.1_192","hardwareRevision":"1.0","protocolStrings":["com.zelcam.ucd"],)"
      << R"("dockType":"usb","endpoint":{"type":"unix","path":")" << socketPath() << "\"}}";
}

platform::UniqueDescriptor EchoCamera::connect() const {
  platform::UniqueDescriptor host(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const sockaddr_un address = addressOf(socketPath());
  if (::connect(host.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) std::abort();
  return host;
}

void EchoCamera::run() {
  for (;;) {
    const platform::UniqueDescriptor host(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!host) return;
    serve(host.get());
  }
}

void EchoCamera::serve(int host) {
  std::array<std::uint8_t, 4096> buffer;
  std::size_t held = 0;
  for (;;) {
    const ssize_t count = read(host, buffer.data() + held, buffer.size() - held);
    if (count <= 0) return;
    held += static_cast<std::size_t>(count);
    bool marker = false;
    const std::size_t whole = answer(std::span(buffer).first(held), marker);
    if (marker && !sendAll(host, dataSynchronismValue)) return;
    if (whole != 0 && !sendAll(host, ByteView(buffer).first(whole))) return;
    held -= whole;
    std::memmove(buffer.data(), buffer.data() + whole, held);
  }
}

}  // namespace zel::bench

#include "tests/zelcam/bare_camera.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <utility>

namespace zel::test {
namespace {

constexpr int kPeriod = 100;  // milliseconds between two frames

}  // namespace

BareCamera::BareCamera(const std::string& bus, Conduct conduct)
    : bus_(bus), conduct_(std::move(conduct)), socketPath_(bus + ".bare.sock") {
  std::filesystem::create_directory(bus);
  std::filesystem::permissions(bus, std::filesystem::perms::owner_all);
}

BareCamera::~BareCamera() {
  stopped_ = true;
  stopListening();
  for (auto& acceptor : acceptors_) acceptor.join();  // and with them comes the last of the threads
  for (auto& thread : threads_) thread.join();
}

void BareCamera::attach() const {
  const nlohmann::json file = {{"connectionID", 7},
                               {"manufacturer", "Example"},
                               {"name", "Bare"},
                               {"modelNumber", "E1"},
                               {"serialNumber", "BARE"},
                               {"firmwareRevision", "E1_2.0.1_189"},
                               {"hardwareRevision", "1.0"},
                               {"protocolStrings", {"com.zelcam.ucd"}},
                               {"dockType", "usb"},
                               {"endpoint", {{"type", "unix"}, {"path", socketPath_}}}};
  std::ofstream(bus_ + "/.bare") << file;
  std::filesystem::rename(bus_ + "/.bare", bus_ + "/bare.json");
}

void BareCamera::listen() {
  const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  socketPath_.copy(address.sun_path, sizeof address.sun_path - 1);
  if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) std::abort();
  if (::listen(listener, 8) != 0) std::abort();
  listener_ = listener;
  acceptors_.emplace_back([this, listener] { accept(listener); });
}

void BareCamera::stopListening() {
  const int listener = listener_.exchange(-1);
  if (listener < 0) return;
  ::unlink(socketPath_.c_str());
  ::shutdown(listener, SHUT_RDWR);  // ends accept(), which closes it
}

void BareCamera::accept(int listener) {
  for (int socket = -1; (socket = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
    const int number = ++connections_;
    const std::lock_guard lock(mutex_);
    threads_.emplace_back([this, socket, number] { serve(socket, number); });
  }
  ::close(listener);
}

void BareCamera::serve(int socket, int number) {
  Link link(socket, stopped_);
  conduct_(link, number);
  ::close(socket);
}

bool BareCamera::Link::isClosed(int milliseconds) {
  if (stopped_) return true;
  pollfd query{socket_, POLLIN, 0};
  if (::poll(&query, 1, milliseconds) < 1) return false;
  char bytes[4096];
  return ::recv(socket_, bytes, sizeof bytes, MSG_DONTWAIT) == 0;
}

// What it asks with stays unread, so that closing now would break the connection.
bool BareCamera::Link::isAsked() {
  char byte = 0;
  pollfd query{socket_, POLLIN, 0};
  while (!stopped_ && ::poll(&query, 1, kPeriod) == 0) continue;
  return ::recv(socket_, &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 1;
}

void BareCamera::Link::send(const std::vector<std::uint8_t>& bytes) {
  (void)!::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

void BareCamera::Link::sendMarker() { send({0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA, 0xAF, 0xFA}); }

void BareCamera::Link::sendFrames(int count) {
  for (int i = 0; i < count; ++i) send({6, 0, 0, 0, 0x77, 0});
}

void BareCamera::Link::flow() {
  do sendFrames(1);
  while (!isClosed(kPeriod));
}

void BareCamera::Link::beSilent() {
  while (!isClosed(kPeriod)) continue;
}

}  // namespace zel::test

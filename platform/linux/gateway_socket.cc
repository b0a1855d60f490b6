#include "platform/linux/gateway_socket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include "platform/linux/accessory_folder.h"
#include "platform/linux/endpoint.h"
#include "platform/linux/error_text.h"

namespace zel::platform {
namespace {

constexpr int kWaitingConnections = 64;
constexpr std::chrono::milliseconds kOtherGateway{200};  // to find out whether one answers

std::string folderAbove(const std::string& folder) {
  const std::size_t slash = folder.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : folder.substr(0, slash);
}

bool isAnswered(const std::string& path) {
  std::string ignored;
  return static_cast<bool>(connectEndpoint(UnixEndpoint{path}, kOtherGateway, ignored));
}

// A socket that takes connections at `path`, under a name of its own until it does: who finds it at its path can use
// it.
UniqueDescriptor listenAt(const std::string& path, std::string& fault) {
  const std::string part = path + "." + std::to_string(::getpid());
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  fault = path + ": " + errorText(ENAMETOOLONG);
  if (part.size() > kLongestSocketPath) return {};
  std::memcpy(address.sun_path, part.data(), part.size());
  UniqueDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  ::unlink(part.c_str());
  // The mode of the socket becomes that of its file.
  const bool listens = socket && ::fchmod(socket.get(), 0600) == 0 &&
                       ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                       ::listen(socket.get(), kWaitingConnections) == 0 && ::rename(part.c_str(), path.c_str()) == 0;
  if (listens) return socket;
  fault = path + ": " + errorText(errno);
  ::unlink(part.c_str());
  return {};
}

}  // namespace

std::array<std::string, 2> gatewaySocketPaths(const std::string& busFolder) {
  const std::string bus = realFolder(busFolder);
  const std::string above = folderAbove(bus);
  return {bus + "/.gateway.sock", above + (above == "/" ? "" : "/") + "gateway.sock"};
}

std::unique_ptr<GatewaySocket> GatewaySocket::listen(const std::string& busFolder, std::string& fault) {
  const auto [inside, beside] = gatewaySocketPaths(busFolder);
  std::string faults;
  for (const std::string& path : {beside, inside}) {
    UniqueDescriptor socket;
    if (isAnswered(path)) {
      fault = path + ": another gateway answers there";
    } else {
      socket = listenAt(path, fault);
    }
    if (socket) return std::unique_ptr<GatewaySocket>(new GatewaySocket(path, std::move(socket)));
    faults += (faults.empty() ? "" : "; ") + fault;
  }
  fault = faults;
  return nullptr;
}

GatewaySocket::GatewaySocket(std::string path, UniqueDescriptor descriptor)
    : path_(std::move(path)), descriptor_(std::move(descriptor)) {
  struct stat found = {};
  if (::lstat(path_.c_str(), &found) != 0) return;
  device_ = found.st_dev;
  file_ = found.st_ino;
}

GatewaySocket::~GatewaySocket() {
  struct stat found = {};
  if (::lstat(path_.c_str(), &found) == 0 && found.st_dev == device_ && found.st_ino == file_) ::unlink(path_.c_str());
}

}  // namespace zel::platform

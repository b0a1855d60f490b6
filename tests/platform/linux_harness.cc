#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>

#include <ZELTarkaSDK/LinuxPlatform.h>

#include "tests/platform/harness.h"

namespace zel::test {
namespace {

namespace fs = std::filesystem;

class SocketFarEnd final : public FarEnd {
 public:
  explicit SocketFarEnd(int descriptor) : descriptor_(descriptor) {}
  ~SocketFarEnd() override { close(); }

  void send(const Bytes& bytes) override {
    ASSERT_EQ(::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
  }

  Bytes received() override {
    Bytes buffer(65536);
    while (!stalled_) {
      const ssize_t count = ::recv(descriptor_, buffer.data(), buffer.size(), MSG_DONTWAIT);
      if (count <= 0) break;
      received_.insert(received_.end(), buffer.begin(), buffer.begin() + count);
    }
    return received_;
  }

  void stall() override { stalled_ = true; }
  void resume() override { stalled_ = false; }

  void close() override {
    if (descriptor_ >= 0) ::close(descriptor_);
    descriptor_ = -1;
  }

  // A Unix socket that is closed with bytes unread resets the link.
  void breakLink() override { close(); }

 private:
  int descriptor_;
  bool stalled_ = false;
  Bytes received_;
};

// A fresh folder, removed with everything in it.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::string name = (fs::temp_directory_path() / "zel-conformance-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no scratch folder");
    path_ = name;
  }
  ~ScratchFolder() { fs::remove_all(path_); }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

int listenAt(const fs::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.string().copy(address.sun_path, sizeof(address.sun_path) - 1);
  const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
      ::listen(listener, 8) != 0) {
    throw std::runtime_error("cannot listen at " + path.string());
  }
  return listener;
}

std::string quoted(const std::string& text) { return '"' + text + '"'; }

std::string toJson(const platform::AccessoryDescription& camera, const fs::path& socket) {
  std::string protocols;
  for (const auto& protocol : camera.protocolStrings) protocols += (protocols.empty() ? "" : ", ") + quoted(protocol);
  return "{\"connectionID\": " + std::to_string(camera.connectionID) +
         ", \"manufacturer\": " + quoted(camera.manufacturer) + ", \"name\": " + quoted(camera.name) +
         ", \"modelNumber\": " + quoted(camera.modelNumber) + ", \"serialNumber\": " + quoted(camera.serialNumber) +
         ", \"firmwareRevision\": " + quoted(camera.firmwareRevision) +
         ", \"hardwareRevision\": " + quoted(camera.hardwareRevision) + ", \"protocolStrings\": [" + protocols +
         "], \"dockType\": " + quoted(camera.dockType) +
         ", \"endpoint\": {\"type\": \"unix\", \"path\": " + quoted(socket.string()) + "}}";
}

class LinuxHarness final : public Harness {
 public:
  LinuxHarness() {
    std::string error;
    LinuxPlatform::Options options;
    options.accessoriesFolder = bus().string();
    host_ = LinuxPlatform::create(std::move(options), error);
    if (!host_) throw std::runtime_error(error);
  }
  ~LinuxHarness() override {
    for (const auto& [id, listener] : listeners_) ::close(listener);
  }

  const platform::Ports& ports() override { return host_->ports(); }

  bool runUntil(const std::function<bool()>& condition) override {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition() && std::chrono::steady_clock::now() < limit) host_->runMainQueueFor(0.001);
    return condition();
  }

  void plug(const platform::AccessoryDescription& description) override {
    const fs::path socket = scratch_.path() / (std::to_string(description.connectionID) + ".sock");
    listeners_[description.connectionID] = listenAt(socket);
    const fs::path draft = scratch_.path() / "draft";
    std::ofstream(draft) << toJson(description, socket);
    fs::rename(draft, file(description.connectionID));
  }
  void unplug(std::uint64_t connectionID) override { fs::remove(file(connectionID)); }

  Connection connect(std::uint64_t connectionID) override {
    auto session = host_->ports().accessories.openSession(attached(connectionID), kProtocol);
    if (!session) return {};
    pollfd waiting{listeners_.at(connectionID), POLLIN, 0};
    if (::poll(&waiting, 1, 20'000) != 1) return {};
    return {std::move(session), std::make_unique<SocketFarEnd>(::accept4(waiting.fd, nullptr, nullptr, SOCK_CLOEXEC))};
  }

 private:
  fs::path bus() const { return scratch_.path() / "bus"; }
  fs::path file(std::uint64_t connectionID) const { return bus() / (std::to_string(connectionID) + ".json"); }

  std::shared_ptr<platform::Accessory> attached(std::uint64_t connectionID) {
    for (const auto& accessory : host_->ports().accessories.connectedAccessories()) {
      if (accessory->description().connectionID == connectionID) return accessory;
    }
    return nullptr;
  }

  ScratchFolder scratch_;
  std::map<std::uint64_t, int> listeners_;
  std::unique_ptr<LinuxPlatform> host_;
};

}  // namespace

std::unique_ptr<Harness> makeLinuxHarness() { return std::make_unique<LinuxHarness>(); }

}  // namespace zel::test

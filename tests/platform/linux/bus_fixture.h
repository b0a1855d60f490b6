#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <ZELTarkaSDK/LinuxPlatform.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <ZELTarkaSDK/platform/ports.h>

#include "platform/linux/unique_descriptor.h"
#include "tests/platform/linux/temporary_folder.h"
#include "tests/platform/linux/waiting.h"

namespace zel::test {

// The text of an accessory's file.
inline std::string accessoryJson(std::uint64_t connectionID, const std::string& endpoint,
                                 const std::string& name = "Example 360") {
  return "{\"connectionID\":" + std::to_string(connectionID) + ",\"manufacturer\":\"Example\",\"name\":\"" + name +
         "\",\"modelNumber\":\"E1\",\"serialNumber\":\"E1A0001\",\"firmwareRevision\":\"E1_2.0.1_192\"," +
         "\"hardwareRevision\":\"1.0\",\"protocolStrings\":[\"com.zelcam.ucd\"],\"dockType\":\"usb\",\"endpoint\":" +
         endpoint + "}";
}

inline std::string unixEndpoint(const std::string& path) { return R"({"type":"unix","path":")" + path + "\"}"; }

// A socket that takes connections at a path.
inline platform::UniqueDescriptor listenAt(const std::string& path, int backlog = 8) {
  platform::UniqueDescriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.data(), path.size());
  if (bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return {};
  if (listen(listener.get(), backlog) != 0) return {};
  return listener;
}

// A platform on a folder of its own, whose main queue the test runs.
class BusFixture : public ::testing::Test {
 protected:
  BusFixture() {
    std::string error;
    LinuxPlatform::Options options;
    options.accessoriesFolder = folder_.path();
    options.warn = [this](const std::string& warning) { warnings_.add(warning); };
    platform_ = LinuxPlatform::create(std::move(options), error);
    EXPECT_NE(platform_, nullptr) << error;
    for (const auto name :
         {platform::kAccessoryDidConnectNotification, platform::kAccessoryDidDisconnectNotification}) {
      observations_.push_back(ports().notifications.observe(
          name, [this](const platform::Notification& notification) { heard(notification); }));
    }
  }

  const platform::Ports& ports() { return platform_->ports(); }
  platform::AccessoryManager& manager() { return ports().accessories; }

  void plug(const std::string& name, std::uint64_t connectionID) {
    folder_.place(name + ".json", accessoryJson(connectionID, unixEndpoint(folder_.file(name + ".sock"))));
  }
  void unplug(const std::string& name) { folder_.remove(name + ".json"); }

  // The connection identifiers of a listing.
  std::vector<std::uint64_t> listed() {
    std::vector<std::uint64_t> identifiers;
    for (const auto& accessory : manager().connectedAccessories()) {
      identifiers.push_back(accessory->description().connectionID);
    }
    return identifiers;
  }
  bool runUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + kLimit;
    while (!condition()) {
      if (std::chrono::steady_clock::now() > end) return false;
      platform_->runMainQueueFor(0.001);
    }
    return true;
  }
  // What has been heard, as "+7" and "-7", once there is that much.
  std::vector<std::string> heardAtLeast(std::size_t count) {
    runUntil([&] { return heard_.size() >= count; });
    settle();
    return heard_;
  }
  // Everything that the kernel has told by now is taken in.
  void settle() {
    for (int round = 0; round < 3; ++round) platform_->drainMainQueue();
  }

  TemporaryFolder folder_;
  Recorded<std::string> warnings_;
  std::unique_ptr<LinuxPlatform> platform_;
  std::vector<std::string> heard_;
  std::vector<std::shared_ptr<platform::Accessory>> accessories_;  // of what was heard
  std::function<void()> onHeard_;

 private:
  void heard(const platform::Notification& notification) {
    const auto accessory = notification.accessory(platform::kAccessoryKey);
    const bool came = notification.name == platform::kAccessoryDidConnectNotification;
    EXPECT_EQ(accessory->isConnected(), came) << "as the notification says";
    accessories_.push_back(accessory);
    heard_.push_back((came ? "+" : "-") + std::to_string(accessory->description().connectionID));
    if (onHeard_) onHeard_();
  }

  std::vector<std::unique_ptr<platform::NotificationObservation>> observations_;
};

}  // namespace zel::test

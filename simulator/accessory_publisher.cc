#include "simulator/accessory_publisher.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/linux/accessory_folder.h"

namespace zel::simulator {
namespace {

using nlohmann::ordered_json;

// A number that is unique for each attachment, among all simulators on this machine.
std::uint64_t newConnectionID() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(now).count());
}

std::string fileName(const std::string& serial) {
  std::string name;
  for (const char letter : serial) {
    const bool plain = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
                       (letter >= '0' && letter <= '9') || letter == '-' || letter == '_';
    name += plain ? letter : '_';
  }
  return name;
}

platform::UniqueDescriptor lockOf(const std::string& file) {
  platform::UniqueDescriptor lock(open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (lock && flock(lock.get(), LOCK_EX | LOCK_NB) != 0) lock.reset();
  return lock;
}

}  // namespace

AccessoryPublisher::AccessoryPublisher(const std::string& chosenFolder, Identity identity)
    : identity_(std::move(identity)), folder_(platform::accessoryFolderPath(chosenFolder)) {
  file_ = folder_ + "/" + fileName(identity_.serial) + ".json";
  platform::prepareAccessoryFolder(folder_, error_);
}

bool AccessoryPublisher::publish(const std::string& socketPath) {
  lock_.reset();
  if (access(file_.c_str(), F_OK) == 0 && !lockOf(file_)) {
    error_ = "a camera " + identity_.serial + " is attached already, by another simulator; choose another --serial";
    return false;
  }
  const ordered_json description = {{"connectionID", newConnectionID()},
                                    {"manufacturer", "Example"},
                                    {"name", identity_.name},
                                    {"modelNumber", "E1"},
                                    {"serialNumber", identity_.serial},
                                    {"firmwareRevision", "E1_2.0.1_" + std::to_string(identity_.firmware)},
                                    {"hardwareRevision", "1.0"},
                                    {"protocolStrings", {"com.zelcam.ucd"}},
                                    {"dockType", "usb"},
                                    {"endpoint", {{"type", "unix"}, {"path", socketPath}}}};
  const std::string hidden = folder_ + "/." + std::to_string(getpid()) + "-" + fileName(identity_.serial);
  {
    std::ofstream out(hidden);
    out << description.dump(2, ' ', false, ordered_json::error_handler_t::replace) << '\n';
    published_ = out.good();
  }
  if (published_) lock_ = lockOf(hidden);
  published_ = published_ && std::rename(hidden.c_str(), file_.c_str()) == 0;
  if (!published_) error_ = file_ + " cannot be written: " + std::strerror(errno);
  return published_;
}

void AccessoryPublisher::withdraw() {
  if (std::exchange(published_, false)) unlink(file_.c_str());
  lock_.reset();
}

}  // namespace zel::simulator

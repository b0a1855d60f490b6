#include "platform/linux/linux_accessory.h"

#include <algorithm>
#include <utility>

namespace zel::platform {

LinuxAccessory::LinuxAccessory(std::string path, const FileIdentity& identity, ParsedAccessory parsed)
    : path_(std::move(path)), identity_(identity), parsed_(std::move(parsed)) {}

// Checks the file too, since the folder may not be watched.
bool LinuxAccessory::isConnected() const {
  struct stat found = {};
  return attached_.load() && lstat(path_.c_str(), &found) == 0 && identityOf(found) == identity_;
}

bool LinuxAccessory::offers(std::string_view protocol) const {
  const auto& offered = description().protocolStrings;
  return std::find(offered.begin(), offered.end(), protocol) != offered.end();
}

std::string LinuxAccessory::camera() const {
  const std::string& serial = description().serialNumber;
  return serial.empty() ? path_.substr(path_.rfind('/') + 1) : serial;
}

std::shared_ptr<LinuxAccessory> LinuxAccessory::again() const {
  return std::make_shared<LinuxAccessory>(path_, identity_, parsed_);
}

}  // namespace zel::platform

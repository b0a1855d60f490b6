#pragma once

#include <atomic>
#include <string>

#include "platform/accessory.h"
#include "platform/linux/accessory_description.h"
#include "platform/linux/accessory_file.h"

namespace zel::platform {

// One attachment: one file of the bus's folder, from its appearance to its removal or replacement.
class LinuxAccessory final : public Accessory {
 public:
  LinuxAccessory(std::string path, const FileIdentity& identity, ParsedAccessory parsed);

  const AccessoryDescription& description() const override { return parsed_.description; }
  bool isConnected() const override;
  double foundationVersion() const override { return 1240.1; }

  const std::string& path() const { return path_; }
  const Endpoint& endpoint() const { return parsed_.endpoint; }
  bool offers(std::string_view protocol) const;

  // From now on it has left.
  void depart() { attached_.store(false); }

  // True the first time only: an attachment that cannot be connected is reported once.
  bool reportsFirstFault() { return !faultReported_.exchange(true); }

 private:
  const std::string path_;
  const FileIdentity identity_;
  const ParsedAccessory parsed_;
  std::atomic<bool> attached_ = true;
  std::atomic<bool> faultReported_ = false;
};

}  // namespace zel::platform

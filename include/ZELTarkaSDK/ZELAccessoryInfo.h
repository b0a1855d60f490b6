#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include <ZELTarkaSDK/platform/export.h>

namespace zel::platform {
class Accessory;
}

// A dictionary whose keys are the property names of ZELAccessoryInfo.
using ZELAccessoryDict =
    std::map<std::string, std::variant<bool, std::uint64_t, std::string, std::vector<std::string>>>;

// An immutable snapshot of an accessory's identity.
// Thread: any thread.
class ZEL_EXPORT ZELAccessoryInfo {
 public:
  // initWithAccessory: - a snapshot of the accessory.
  static std::shared_ptr<const ZELAccessoryInfo> initWithAccessory(const zel::platform::Accessory& accessory);

  // initWithAccessoryDict: - properties from the dictionary's keys; a missing key leaves its property empty.
  // Errors: null for a key that names no property or holds another type.
  static std::shared_ptr<const ZELAccessoryInfo> initWithAccessoryDict(const ZELAccessoryDict& dict);

  bool isConnected() const { return connected_; }
  std::uint64_t connectionID() const { return connectionID_; }
  const std::string& manufacturer() const { return manufacturer_; }
  const std::string& name() const { return name_; }
  const std::string& modelNumber() const { return modelNumber_; }
  const std::string& serialNumber() const { return serialNumber_; }
  const std::string& firmwareRevision() const { return firmwareRevision_; }
  const std::string& hardwareRevision() const { return hardwareRevision_; }
  const std::vector<std::string>& protocolStrings() const { return protocolStrings_; }
  // Empty on a platform whose foundation version is below 1240.1.
  const std::string& dockType() const { return dockType_; }

  bool operator==(const ZELAccessoryInfo&) const = default;

 private:
  ZELAccessoryInfo() = default;
  bool assign(const std::string& key, const ZELAccessoryDict::mapped_type& value);

  bool connected_ = false;
  std::uint64_t connectionID_ = 0;
  std::string manufacturer_;
  std::string name_;
  std::string modelNumber_;
  std::string serialNumber_;
  std::string firmwareRevision_;
  std::string hardwareRevision_;
  std::vector<std::string> protocolStrings_;
  std::string dockType_;
};

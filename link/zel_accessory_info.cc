#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/platform/accessory.h>

namespace {

constexpr double kDockTypeFoundationVersion = 1240.1;  // older platforms have no dock type

template <class T>
bool assignTo(T& property, const ZELAccessoryDict::mapped_type& value) {
  const T* typed = std::get_if<T>(&value);
  if (typed != nullptr) property = *typed;
  return typed != nullptr;
}

}  // namespace

std::shared_ptr<const ZELAccessoryInfo> ZELAccessoryInfo::initWithAccessory(const zel::platform::Accessory& accessory) {
  const auto& description = accessory.description();
  const std::shared_ptr<ZELAccessoryInfo> info(new ZELAccessoryInfo);
  info->connected_ = accessory.isConnected();
  info->connectionID_ = description.connectionID;
  info->manufacturer_ = description.manufacturer;
  info->name_ = description.name;
  info->modelNumber_ = description.modelNumber;
  info->serialNumber_ = description.serialNumber;
  info->firmwareRevision_ = description.firmwareRevision;
  info->hardwareRevision_ = description.hardwareRevision;
  info->protocolStrings_ = description.protocolStrings;
  if (accessory.foundationVersion() >= kDockTypeFoundationVersion) info->dockType_ = description.dockType;
  return info;
}

std::shared_ptr<const ZELAccessoryInfo> ZELAccessoryInfo::initWithAccessoryDict(const ZELAccessoryDict& dict) {
  const std::shared_ptr<ZELAccessoryInfo> info(new ZELAccessoryInfo);
  for (const auto& [key, value] : dict) {
    if (!info->assign(key, value)) return nullptr;
  }
  return info;
}

bool ZELAccessoryInfo::assign(const std::string& key, const ZELAccessoryDict::mapped_type& value) {
  if (key == "connected") return assignTo(connected_, value);
  if (key == "connectionID") return assignTo(connectionID_, value);
  if (key == "manufacturer") return assignTo(manufacturer_, value);
  if (key == "name") return assignTo(name_, value);
  if (key == "modelNumber") return assignTo(modelNumber_, value);
  if (key == "serialNumber") return assignTo(serialNumber_, value);
  if (key == "firmwareRevision") return assignTo(firmwareRevision_, value);
  if (key == "hardwareRevision") return assignTo(hardwareRevision_, value);
  if (key == "protocolStrings") return assignTo(protocolStrings_, value);
  if (key == "dockType") return assignTo(dockType_, value);
  return false;
}

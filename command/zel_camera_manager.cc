#include <ZELTarkaSDK/WireConstants.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraManager.h>
#include <ZELTarkaSDK/ZELCameraUCD.h>
#include <ZELTarkaSDK/ZELMessageKeys.h>

#include <memory>
#include <utility>

#include <ZELTarkaSDK/platform/notification_center.h>

namespace {

std::int64_t numberIn(const std::optional<ZELMessageFields>& value, std::string_view key) {
  return value ? value->get<std::int32_t>(key).value_or(0) : 0;
}

std::int32_t powerType(std::uint8_t reported) { return reported == 1 || reported == 2 ? reported : 0; }

}  // namespace

ZELCameraManager::ZELCameraManager(ZELCameraAccessory& accessory, ZELCameraUCD& ucd,
                                   zel::platform::NotificationCenter& notifications)
    : accessory_(accessory), ucd_(ucd), notifications_(notifications) {}

ZELCameraManager::~ZELCameraManager() { unRegisterForCameraNotifications(); }

// The pointer does not own: the command layer must not keep the manager alive, whose destructor removes it.
void ZELCameraManager::registerForCameraNotifications() {
  ucd_.addCameraNotificationReceiver({std::shared_ptr<void>(), this});
}

void ZELCameraManager::unRegisterForCameraNotifications() { ucd_.removeCameraNotificationReceiver(this); }

void ZELCameraManager::notificationType(std::int64_t type, const std::optional<ZELMessageFields>& value) {
  const auto post = [this](std::string_view name, zel::platform::NotificationUserInfo userInfo) {
    notifications_.post({std::string(name), std::move(userInfo), this});
  };
  const std::string power(kZELPowerTypeKey);
  const std::string battery(kZELBatteryStateKey);
  const std::int64_t first = numberIn(value, zel::key::intValue);
  if (type == static_cast<std::int64_t>(ZELCameraEvent::batteryUpdate)) {
    post(ZELCameraNotificationBatteryChange, {{power, first}, {battery, numberIn(value, zel::key::intValue2)}});
  } else if (type == static_cast<std::int64_t>(ZELCameraEvent::batteryLow)) {
    post(ZELCameraNotificationBatteryLow, {{battery, first}});
  } else if (type == static_cast<std::int64_t>(ZELCameraEvent::batteryShutDown)) {
    post(ZELCameraNotificationPowerOff, {{battery, first}});
  }
}

void ZELCameraManager::queryCameraBattery(zel::RebackBlock<std::int32_t, std::int32_t> callback) {
  ucd_.msgReqBatteryWithRebackBlock(
      [callback = std::move(callback)](const auto& error, std::uint8_t reported, std::uint8_t level) {
        if (callback) callback(error, powerType(reported), level);
      });
}

void ZELCameraManager::getCameraMediaOffset(std::uint8_t typeInfo,
                                            zel::RebackBlock<const std::optional<std::string>&> callback) {
  ucd_.msgReqGetMediaOffset(kMediaOffsetOfCamera, typeInfo, std::move(callback));
}

void ZELCameraManager::getCameraAudioBitrateWithRebackBlock(zel::RebackBlock<std::uint32_t> rebackBlock) {
  const auto tooOld = checkoutAudioAsynVersion();
  if (!tooOld) return ucd_.msgReqGetAudioBitrateWithRebackBlock(std::move(rebackBlock));
  if (rebackBlock) rebackBlock(tooOld, 0);
}

void ZELCameraManager::setCameraAudioBitrate(std::uint32_t bitrate, zel::RebackBlock<> rebackBlock) {
  const auto tooOld = checkoutAudioAsynVersion();
  if (!tooOld) return ucd_.msgReqSetAudioBitrate(bitrate, std::move(rebackBlock));
  if (rebackBlock) rebackBlock(tooOld);
}

std::optional<ZELError> ZELCameraManager::checkoutAudioAsynVersion() const {
  if (accessory_.linkStatus() != zel::LinkStatus::flowing || accessory_.firewareVersion() >= kFirewareVersion190)
    return std::nullopt;
  return zelOSStatusError(kZELErrorOldFirmware);
}

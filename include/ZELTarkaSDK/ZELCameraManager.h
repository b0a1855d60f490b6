#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <ZELTarkaSDK/ZELCameraNotificationProtocol.h>
#include <ZELTarkaSDK/ZELHandlers.h>
#include <ZELTarkaSDK/platform/export.h>

class ZELCameraAccessory;
class ZELCameraUCD;

namespace zel::platform {
class NotificationCenter;
}

// Notifications of the camera's power, and the keys of their user information.
inline constexpr std::string_view ZELCameraNotificationBatteryChange = "ZELCameraNotificationBatteryChange";
inline constexpr std::string_view ZELCameraNotificationBatteryLow = "ZELCameraNotificationBatteryLow";
inline constexpr std::string_view ZELCameraNotificationPowerOff = "ZELCameraNotificationPowerOff";
inline constexpr std::string_view kZELPowerTypeKey = "powerType";
inline constexpr std::string_view kZELBatteryStateKey = "batteryState";

// Posts the camera's power state as notifications, and answers a few queries that need more than a message: the power
// type, the lens offset, and the audio bitrate, which older cameras do not support.
// Receives the command layer's events after registerForCameraNotifications(), or after addCameraNotificationReceiver()
// as any other receiver.
//
// Owner:  the arguments of the constructor must outlive the object. Registering does not keep it alive; a shared one
//         that is added is kept until it is removed or the command layer is destroyed.
// Thread: any thread; handlers run on the main queue unless stated otherwise.
class ZEL_EXPORT ZELCameraManager final : public ZELCameraNotificationProtocol {
 public:
  // The manager of the process-wide stack.
  static ZELCameraManager& sharedManager();

  ZELCameraManager(ZELCameraAccessory& accessory, ZELCameraUCD& ucd, zel::platform::NotificationCenter& notifications);
  ~ZELCameraManager() override;
  ZELCameraManager(const ZELCameraManager&) = delete;
  ZELCameraManager& operator=(const ZELCameraManager&) = delete;

  // Starts and stops posting the camera's battery events as notifications, with the manager as sender. Registered or
  // added twice, it posts each event twice; unregistering ends both.
  void registerForCameraNotifications();
  void unRegisterForCameraNotifications();

  // notificationType:value: - posts the notification of a battery event; other events post nothing.
  // Thread: the one that delivers the event; observers must not register or unregister there.
  void notificationType(std::int64_t type, const std::optional<ZELMessageFields>& value) override;

  // queryCameraBattery: - power type (1, 2, and 0 for any other) and battery level.
  void queryCameraBattery(zel::RebackBlock<std::int32_t, std::int32_t> callback);

  // getCameraMediaOffset:callback: - the lens offset's text.
  void getCameraMediaOffset(std::uint8_t typeInfo, zel::RebackBlock<const std::optional<std::string>&> callback);

  // getCameraAudioBitrateWithRebackBlock:, setCameraAudioBitrate:rebackBlock: - bits a second.
  // Errors: 120 when the connected camera's firmware is below 190, at once and on the calling thread.
  void getCameraAudioBitrateWithRebackBlock(zel::RebackBlock<std::uint32_t> rebackBlock);
  void setCameraAudioBitrate(std::uint32_t bitrate, zel::RebackBlock<> rebackBlock);

  // Error 120 when the connected camera's firmware is too old for the audio bitrate ("checkout" and "Asyn" are the
  // interface's spelling). No error without a connection: the request then fails with 100.
  std::optional<ZELError> checkoutAudioAsynVersion() const;

 private:
  ZELCameraAccessory& accessory_;
  ZELCameraUCD& ucd_;
  zel::platform::NotificationCenter& notifications_;
};

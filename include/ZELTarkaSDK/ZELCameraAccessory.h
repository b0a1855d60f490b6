#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include <ZELTarkaSDK/Export.h>
#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/ZELCameraAccessoryDelegate.h>
#include <ZELTarkaSDK/ZELData.h>

#include "platform/observer_list.h"

class CameraSession;
class ZELTunnelService;

namespace zel {
class InboundStream;
namespace platform {
class Accessory;
struct Notification;
struct Ports;
}  // namespace platform

// The protocol that a camera's accessory offers.
inline constexpr std::string_view kAccessoryProtocol = "com.zelcam.ucd";
}  // namespace zel

// Notifications posted when the camera is attached and detached ("DisConnect" is the interface's spelling), and the key
// under which both carry the platform's accessory.
inline constexpr std::string_view kZELCameraDidConnectNotification = "ZELCameraDidConnectNotification";
inline constexpr std::string_view kZELCameraDidDisConnectNotification = "ZELCameraDidDisConnectNotification";
inline constexpr std::string_view kZELCameraConnectAccessoryKey = "ZELCameraConnectAccessoryKey";

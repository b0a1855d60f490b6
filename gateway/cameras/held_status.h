#pragma once

#include <ZELTarkaSDK/LinkStatus.h>

#include <string_view>

namespace zel::gateway {

// How a camera of the gateway is.
enum class CameraStatus {
  absent,     // not attached
  opening,    // attached; no frame has come yet
  streaming,  // frames arrive: it can be asked
  silent,     // frames have stopped
};

constexpr std::string_view toString(CameraStatus status) {
  switch (status) {
    case CameraStatus::absent:
      return "absent";
    case CameraStatus::opening:
      return "opening";
    case CameraStatus::streaming:
      return "streaming";
    case CameraStatus::silent:
      return "silent";
  }
  return "absent";
}

constexpr CameraStatus cameraStatusOf(LinkStatus link, bool isAttached) {
  switch (link) {
    case LinkStatus::closed:
      return isAttached ? CameraStatus::opening : CameraStatus::absent;
    case LinkStatus::open:
      return CameraStatus::opening;
    case LinkStatus::flowing:
      return CameraStatus::streaming;
    case LinkStatus::silent:
      return CameraStatus::silent;
  }
  return CameraStatus::absent;
}

}  // namespace zel::gateway

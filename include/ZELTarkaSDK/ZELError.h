#pragma once

#include <optional>
#include <string>

#include <ZELTarkaSDK/platform/export.h>

// An error: a domain, a code within it, and for some domains a description.
struct ZEL_EXPORT ZELError {
  std::string domain;
  int code = 0;
  std::optional<std::string> description;

  bool operator==(const ZELError&) const = default;
};

// Domain of the accessory object's errors; the three c's are the interface's spelling.
inline constexpr char kZELCameraAccessoryErrorDomain[] = "CameraAcccessoryError";

// Domain of the command layer's, the photo parser's and the file transfer's errors, and its three codes.
inline constexpr char kZELOSStatusErrorDomain[] = "NSOSStatusErrorDomain";
inline constexpr int kZELErrorNotConnected = 100;  // no camera, or the connection was lost
inline constexpr int kZELErrorRefused = 101;       // the camera refused, or its reply cannot be used
inline constexpr int kZELErrorOldFirmware = 120;   // the camera's firmware is too old for the feature

// Domain of the live data source's errors, which have a description.
inline constexpr char kZELLiveSourceErrorDomain[] = "zelcam.liveSource";

// The error of the command layer's domain with that code and no description.
inline ZELError zelOSStatusError(int code) { return {kZELOSStatusErrorDomain, code, std::nullopt}; }

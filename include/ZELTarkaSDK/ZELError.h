#pragma once

#include <optional>
#include <string>

#include <ZELTarkaSDK/Export.h>

// An error as the framework reports it: a domain, a code within it, and for some domains a description.
struct ZEL_EXPORT ZELError {
  std::string domain;
  int code = 0;
  std::optional<std::string> description;

  bool operator==(const ZELError&) const = default;
};

// Domain of the accessory object's errors; the three c's are the interface's spelling.
inline constexpr char kZELCameraAccessoryErrorDomain[] = "CameraAcccessoryError";

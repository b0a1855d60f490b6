#pragma once

#include <optional>

#include <ZELTarkaSDK/ZELAccessoryInfo.h>
#include <ZELTarkaSDK/ZELError.h>
#include <ZELTarkaSDK/platform/export.h>

// Receives connection errors.
class ZEL_EXPORT ZELCameraAccessoryDelegate {
 public:
  virtual ~ZELCameraAccessoryDelegate() = default;

  // cameraAccessoryOnError:withDic: - the connection reported an error; no dictionary is given today.
  // Thread: main queue.
  virtual void cameraAccessoryOnError(const ZELError& error, const std::optional<ZELAccessoryDict>& dic) = 0;
};

#pragma once

#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/ZELData.h>

#include <optional>

namespace zel::gateway {

// Position and motion that go with a capture; zeros where they are not known.
struct Sensors {
  ZELGpsData gps = {};
  ZELGyroData gyro = {};
  ZELOrientationData orientation = {};
  std::optional<ZELData> extra = {};  // JSON that is stored with it
};

}  // namespace zel::gateway

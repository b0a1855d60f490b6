#pragma once

#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/ZELHandlers.h>
#include <ZELTarkaSDK/platform/export.h>

// The entry point of HDR captures, which no camera offers yet.
class ZEL_EXPORT ZELHDRShutter {
 public:
  // shutterWithGps:gyro:orientation:jsonData:rebackBlock: - deliberately does nothing: no request is sent and the
  // handler is never called. Hosts may call it already, and will get a picture once cameras support it.
  void shutterWithGps(const ZELGpsData&, const ZELGyroData&, const ZELOrientationData&, const std::optional<ZELData>&,
                      const zel::RebackBlock<std::uint32_t, std::uint64_t, const std::optional<std::string>&>&) {}
};

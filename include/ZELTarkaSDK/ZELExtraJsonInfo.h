#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/ZELMediaGps.h>
#include <ZELTarkaSDK/ZELMediaGyro.h>
#include <ZELTarkaSDK/ZELMediaOrientation.h>
#include <ZELTarkaSDK/platform/export.h>

// The media library's metadata of a photo or video: the lens offset's text, position and motion.
// Owner:  the three objects are shared; null where unknown.
class ZEL_EXPORT ZELExtraJsonInfo {
 public:
  ZELExtraJsonInfo() = default;

  // initWithVideoMnd: - from the metadata of a recorded video.
  static std::unique_ptr<ZELExtraJsonInfo> initWithVideoMnd(const ZELVideoMnd& record);

  const std::optional<std::string>& offset() const { return offset_; }
  const std::shared_ptr<const ZELMediaGps>& gps() const { return gps_; }
  const std::shared_ptr<const ZELMediaGyro>& gyro() const { return gyro_; }
  const std::shared_ptr<const ZELMediaOrientation>& orientation() const { return orientation_; }
  void setOffset(std::optional<std::string> offset) { offset_ = std::move(offset); }
  void setGps(std::shared_ptr<const ZELMediaGps> gps) { gps_ = std::move(gps); }
  void setGyro(std::shared_ptr<const ZELMediaGyro> gyro) { gyro_ = std::move(gyro); }
  void setOrientation(std::shared_ptr<const ZELMediaOrientation> orientation) { orientation_ = std::move(orientation); }

 private:
  std::optional<std::string> offset_;
  std::shared_ptr<const ZELMediaGps> gps_;
  std::shared_ptr<const ZELMediaGyro> gyro_;
  std::shared_ptr<const ZELMediaOrientation> orientation_;
};

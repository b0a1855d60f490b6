#pragma once

#include <memory>

#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/platform/export.h>

// Where a picture was taken, as the media library describes it.
// Units:  degrees, degrees, metres.
class ZEL_EXPORT ZELMediaGps {
 public:
  ZELMediaGps() = default;

  // initWithLatitude:longitude:altitude:
  static std::unique_ptr<ZELMediaGps> initWithLatitude(double latitude, double longitude, double altitude);

  double latitude() const { return latitude_; }
  double longitude() const { return longitude_; }
  double altitude() const { return altitude_; }
  void setLatitude(double value) { latitude_ = value; }
  void setLongitude(double value) { longitude_ = value; }
  void setAltitude(double value) { altitude_ = value; }

  // The camera's record of it.
  ZELGpsData getGpsData() const;

 private:
  double latitude_ = 0;
  double longitude_ = 0;
  double altitude_ = 0;
};

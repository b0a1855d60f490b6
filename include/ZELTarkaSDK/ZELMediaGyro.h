#pragma once

#include <memory>

#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/platform/export.h>

// Acceleration and rotation along the three axes, as the media library describes them, in the camera's units.
class ZEL_EXPORT ZELMediaGyro {
 public:
  ZELMediaGyro() = default;

  // initWithGyroData: - the values of the camera's record.
  static std::unique_ptr<ZELMediaGyro> initWithGyroData(const ZELGyroData& data);

  double ax() const { return ax_; }
  double ay() const { return ay_; }
  double az() const { return az_; }
  double gx() const { return gx_; }
  double gy() const { return gy_; }
  double gz() const { return gz_; }
  void setAx(double value) { ax_ = value; }
  void setAy(double value) { ay_ = value; }
  void setAz(double value) { az_ = value; }
  void setGx(double value) { gx_ = value; }
  void setGy(double value) { gy_ = value; }
  void setGz(double value) { gz_ = value; }

  // The camera's record of it: each value rounded to the nearest single-precision number, infinite where it is beyond
  // that range.
  ZELGyroData getGyroData() const;

 private:
  double ax_ = 0, ay_ = 0, az_ = 0;
  double gx_ = 0, gy_ = 0, gz_ = 0;
};

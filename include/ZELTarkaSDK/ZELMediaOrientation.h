#pragma once

#include <memory>

#include <ZELTarkaSDK/ZELCameraRecords.h>
#include <ZELTarkaSDK/platform/export.h>

// Orientation as a quaternion, as the media library describes it, already in the camera's integer units.
class ZEL_EXPORT ZELMediaOrientation {
 public:
  ZELMediaOrientation() = default;

  // initWithX:y:z:w:
  static std::unique_ptr<ZELMediaOrientation> initWithX(double x, double y, double z, double w);

  double x() const { return x_; }
  double y() const { return y_; }
  double z() const { return z_; }
  double w() const { return w_; }
  void setX(double value) { x_ = value; }
  void setY(double value) { y_ = value; }
  void setZ(double value) { z_ = value; }
  void setW(double value) { w_ = value; }

  // The camera's record of it: each value truncated. A value beyond 32 bits is clamped, and NaN becomes 0.
  ZELOrientationData getOrientationData() const;

 private:
  double x_ = 0, y_ = 0, z_ = 0, w_ = 0;
};

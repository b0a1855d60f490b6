// The media library's object and its three sensor objects.

#include <ZELTarkaSDK/ZELExtraJsonInfo.h>
#include <ZELTarkaSDK/ZELMediaGps.h>
#include <ZELTarkaSDK/ZELMediaGyro.h>
#include <ZELTarkaSDK/ZELMediaOrientation.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

// With IEC 559 floats a value out of range becomes infinite, and narrowing is defined for every value.
static_assert(std::numeric_limits<float>::is_iec559);
float narrowed(double value) { return static_cast<float>(value); }

std::int32_t withoutFraction(double value) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (std::isnan(value)) return 0;
  if (value >= Limits::max()) return Limits::max();
  if (value <= Limits::min()) return Limits::min();
  return static_cast<std::int32_t>(value);
}

}  // namespace

std::unique_ptr<ZELMediaGps> ZELMediaGps::initWithLatitude(double latitude, double longitude, double altitude) {
  auto gps = std::make_unique<ZELMediaGps>();
  gps->setLatitude(latitude);
  gps->setLongitude(longitude);
  gps->setAltitude(altitude);
  return gps;
}

ZELGpsData ZELMediaGps::getGpsData() const { return {latitude_, longitude_, altitude_}; }

std::unique_ptr<ZELMediaGyro> ZELMediaGyro::initWithGyroData(const ZELGyroData& data) {
  auto gyro = std::make_unique<ZELMediaGyro>();
  gyro->setAx(data.ax);
  gyro->setAy(data.ay);
  gyro->setAz(data.az);
  gyro->setGx(data.gx);
  gyro->setGy(data.gy);
  gyro->setGz(data.gz);
  return gyro;
}

ZELGyroData ZELMediaGyro::getGyroData() const {
  return {narrowed(ax_), narrowed(ay_), narrowed(az_), narrowed(gx_), narrowed(gy_), narrowed(gz_)};
}

std::unique_ptr<ZELMediaOrientation> ZELMediaOrientation::initWithX(double x, double y, double z, double w) {
  auto orientation = std::make_unique<ZELMediaOrientation>();
  orientation->setX(x);
  orientation->setY(y);
  orientation->setZ(z);
  orientation->setW(w);
  return orientation;
}

ZELOrientationData ZELMediaOrientation::getOrientationData() const {
  return {withoutFraction(x_), withoutFraction(y_), withoutFraction(z_), withoutFraction(w_)};
}

std::unique_ptr<ZELExtraJsonInfo> ZELExtraJsonInfo::initWithVideoMnd(const ZELVideoMnd& record) {
  auto info = std::make_unique<ZELExtraJsonInfo>();
  info->setOffset(getOffsetFromZELMediaOffset(record.offset));
  info->setGps(ZELMediaGps::initWithLatitude(record.gps.latitude, record.gps.longitude, record.gps.altitude));
  info->setGyro(ZELMediaGyro::initWithGyroData(record.gyro));
  info->setOrientation(ZELMediaOrientation::initWithX(record.orientation.x, record.orientation.y, record.orientation.z,
                                                      record.orientation.w));
  return info;
}

#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include <ZELTarkaSDK/ZELMediaGps.h>
#include <ZELTarkaSDK/ZELMediaGyro.h>
#include <ZELTarkaSDK/ZELMediaOrientation.h>
#include <ZELTarkaSDK/ZELMessageFields.h>

namespace zel {

template <class T>
void setField(ZELMessageFields& fields, std::string_view key, const T& value) {
  fields.set(key, value);
}
// An absent value gives no field.
template <class T>
void setField(ZELMessageFields& fields, std::string_view key, const std::optional<T>& value) {
  if (value) fields.set(key, *value);
}

inline void setFields(ZELMessageFields&) {}
template <class T, class... Rest>
void setFields(ZELMessageFields& fields, std::string_view key, const T& value, const Rest&... rest) {
  setField(fields, key, value);
  setFields(fields, rest...);
}

// A request's fields: key, value, key, value, ...
template <class... KeysAndValues>
ZELMessageFields fieldsOf(const KeysAndValues&... keysAndValues) {
  ZELMessageFields fields;
  setFields(fields, keysAndValues...);
  return fields;
}

// The camera's record of a media library's object; all zero for null.
inline ZELGpsData recordOf(const std::shared_ptr<const ZELMediaGps>& gps) {
  return gps ? gps->getGpsData() : ZELGpsData{};
}
inline ZELGyroData recordOf(const std::shared_ptr<const ZELMediaGyro>& gyro) {
  return gyro ? gyro->getGyroData() : ZELGyroData{};
}
inline ZELOrientationData recordOf(const std::shared_ptr<const ZELMediaOrientation>& orientation) {
  return orientation ? orientation->getOrientationData() : ZELOrientationData{};
}

}  // namespace zel
